#pragma once

#include "TestFiles.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QTemporaryDir>

/** The documents server as a process. */
class DriveProcess
{
public:
    DriveProcess()
    {
        using testfiles::s;
        QDir(m_directory.path()).mkdir(s("site"));
        m_process.start(s(SERVER_PROGRAM), {s("--documents"), m_directory.filePath(s("documents")),
                                            s("--site"), m_directory.filePath(s("site")), s("--http-port"),
                                            s("0"), s("--https-port"), s("0")});
        while (!m_process.canReadLine() && m_process.waitForReadyRead(60'000)) {
        }
        const QJsonObject ports = QJsonDocument::fromJson(m_process.readLine()).object();
        m_http = ports.value(s("http")).toInt();
        m_https = ports.value(s("https")).toInt();
    }
    ~DriveProcess()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    /** Where "http://docs.test" and "https://docs.test" are. */
    QMap<QString, QString> resolve() const
    {
        return {{QStringLiteral("docs.test:80"), QStringLiteral("127.0.0.1:%1").arg(m_http)},
                {QStringLiteral("docs.test:443"), QStringLiteral("127.0.0.1:%1").arg(m_https)}};
    }

    QJsonObject ask(const QByteArray& method, const QString& path, const QByteArray& body = {})
    {
        QNetworkRequest request(QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_http) + path));
        request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
        request.setRawHeader("Cookie", "vlt_sid=test");
        QNetworkReply* reply = m_network.sendCustomRequest(request, method, body);
        QEventLoop loop;
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
        reply->deleteLater();
        return QJsonDocument::fromJson(reply->readAll()).object();
    }
    void setFaults(const QByteArray& json) { ask("PUT", QStringLiteral("/_control/fault"), json); }
    void setShaping(const QByteArray& json) { ask("PUT", QStringLiteral("/_control/shaping"), json); }

    QJsonArray items(const QString& folder)
    {
        return ask("GET", QStringLiteral("/api/v1/drive/groups/7/folders/") + folder)
            .value(QStringLiteral("items"))
            .toArray();
    }
    /** The id of an item by its path from the root of group 7, which is empty at first; empty when there is
     * none. */
    QString idOf(const QString& path)
    {
        QString id = QStringLiteral("0");
        for (const QString& step : path.split(u'/')) {
            QString next;
            for (const QJsonValue& item : items(id)) {
                if (item.toObject().value(QStringLiteral("name")).toString() == step)
                    next = item.toObject().value(QStringLiteral("id")).toString();
            }
            id = next;
        }
        return id;
    }
    QStringList targets()
    {
        QStringList targets;
        for (const QJsonValue& request :
             ask("GET", QStringLiteral("/_control/log")).value(QStringLiteral("requests")).toArray())
            targets.append(request.toObject().value(QStringLiteral("method")).toString() + u' ' +
                           request.toObject().value(QStringLiteral("target")).toString());
        return targets;
    }

private:
    QTemporaryDir m_directory;
    QProcess m_process;
    QNetworkAccessManager m_network;
    int m_http = 0;
    int m_https = 0;
};
