#pragma once

#include "TestFiles.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpServer>
#include <QTcpSocket>

#include <functional>

/** A documents service on a loopback port that offers packages, and what is wrong with them. */
class PackageService final : public QObject
{
public:
    struct Answer
    {
        int status = 200;
        QByteArray body;
        qint64 announced = -1;  //!< the Content-Length; -1 for the body's
        bool isHanging = false; //!< the connection stays open after the body
    };

    PackageService()
    {
        connect(&m_server, &QTcpServer::newConnection, this, &PackageService::onConnection);
        m_server.listen(QHostAddress::LocalHost);
    }

    QString url() const { return QStringLiteral("http://docs.test/"); }
    /** Where `url` is to be found. */
    QString address() const { return QStringLiteral("127.0.0.1:%1").arg(m_server.serverPort()); }

    /** Offers a package with the version and files; `change` may spoil the description. */
    void offer(const QString& plugin, const QString& version, const QByteArray& zip,
               const std::function<void(QJsonObject&)>& change = {})
    {
        const QString path = QStringLiteral("/api/v3/office/package/") + plugin;
        QJsonObject described{
            {QStringLiteral("name"), plugin},
            {QStringLiteral("version"), version},
            {QStringLiteral("url"), QString(path + u'/' + version + QStringLiteral(".zip"))},
            {QStringLiteral("size"), zip.size()},
            {QStringLiteral("sha256"),
             QString::fromLatin1(QCryptographicHash::hash(zip, QCryptographicHash::Sha256).toHex())}};
        if (change)
            change(described);
        answers[path.toUtf8()] = {200, QJsonDocument(described).toJson()};
        answers[(path + u'/' + version + QStringLiteral(".zip")).toUtf8()] = {200, zip};
    }

    QMap<QByteArray, Answer> answers; //!< by path; 404 for any other
    QByteArrayList requests;          //!< "<path> <Host>"

private:
    void onConnection()
    {
        QTcpSocket* socket = m_server.nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
            if (!socket->peek(1 << 16).contains("\r\n\r\n"))
                return;
            const QByteArray head = socket->readAll();
            const QByteArray path = head.split(' ').value(1);
            const int host = head.indexOf("Host: ") + 6;
            requests.append(path + ' ' + head.mid(host, head.indexOf('\r', host) - host));
            const Answer answer = answers.value(path, {404, "{}"});
            const qint64 length = answer.announced < 0 ? answer.body.size() : answer.announced;
            socket->write("HTTP/1.1 " + QByteArray::number(answer.status) +
                          " Status\r\nConnection: close\r\nContent-Length: " + QByteArray::number(length) +
                          "\r\n\r\n" + answer.body);
            if (!answer.isHanging)
                socket->disconnectFromHost();
        });
    }

    QTcpServer m_server;
};
