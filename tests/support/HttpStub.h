#pragma once

#include <QByteArray>
#include <QHash>
#include <QMap>
#include <QObject>
#include <QString>
#include <QTcpServer>
#include <QVector>

#include <functional>

class QTcpSocket;

/** A loopback HTTP server that answers what a test says and keeps what it was asked. */
class HttpStub : public QObject
{
public:
    struct Request
    {
        QByteArray method;
        QByteArray target;
        QMap<QByteArray, QByteArray> headers; //!< names in lower case
        QByteArray body;
    };
    struct Answer
    {
        int status = 200;
        QByteArray body;
        QVector<QPair<QByteArray, QByteArray>> headers;
        int cutAfter = -1;   //!< bytes of the body, then the connection is closed
        bool silent = false; //!< no answer at all
    };

    HttpStub();

    /** "http://127.0.0.1:port" */
    QString origin() const;
    /** The answer to requests whose target begins so; the longest beginning counts. Otherwise 404. */
    void answer(const QByteArray& targetPrefix, Answer answer)
    {
        m_answers.insert(targetPrefix, std::move(answer));
    }

    const QVector<Request>& requests() const { return m_requests; }
    /** The last request whose target begins so; an empty one when there was none. */
    Request last(const QByteArray& targetPrefix) const;
    int count(const QByteArray& targetPrefix) const;

private:
    void read(QTcpSocket* socket);
    void reply(QTcpSocket* socket, const Request& request);

    QHash<QTcpSocket*, QByteArray> m_received;
    QMap<QByteArray, Answer> m_answers;
    QVector<Request> m_requests;
    QTcpServer m_server; //!< ends first, with its sockets
};

/** Turns the event loop until the condition holds; false after five seconds. */
bool waitUntil(const std::function<bool()>& condition);
