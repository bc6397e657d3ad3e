#pragma once

#include <QMap>
#include <QSslConfiguration>
#include <QTcpServer>

#include <functional>
#include <vector>

class QTcpSocket;

/** A request as it arrived; header names in lower case. */
struct ServerRequest
{
    QByteArray method;
    QByteArray target;
    QMap<QByteArray, QByteArray> headers;
    QByteArray body;
};

/** Answers each request with the text that `answer` gives for it, byte for byte; an empty text is silence. */
class ScriptedServer final : public QTcpServer
{
public:
    using Answer = std::function<QByteArray(const ServerRequest& request)>;

    explicit ScriptedServer(Answer answer);
    /** From now on connections are under TLS with this identity. */
    void useTls(const QSslConfiguration& configuration) { m_tls = configuration; }

    /** "127.0.0.1:port" */
    QString address() const;
    QString url(const char* path) const
    {
        return QStringLiteral("http://%1%2").arg(address(), QLatin1String(path));
    }

    std::vector<ServerRequest> requests;
    int connections = 0;
    int disconnections = 0;

protected:
    void incomingConnection(qintptr handle) override;

private:
    void read(QTcpSocket& socket, QByteArray& input);

    const Answer m_answer;
    QSslConfiguration m_tls;
};

/** An answer with these header lines, each with its end, and its length. */
QByteArray httpAnswer(const QByteArray& status, const QByteArray& lines, const QByteArray& body);
/** After such an answer the server closes the connection. */
constexpr char closingMark[] = "\x01"
                               "close";
