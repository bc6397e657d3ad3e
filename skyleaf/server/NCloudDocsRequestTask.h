#pragma once

#include "server/NCloudDocsRequestTaskResult.h"
#include "server/NHelioCloudDocsNetwork.h"

#include <QJsonObject>
#include <QList>
#include <QNetworkCookie>
#include <QObject>
#include <QString>

/** One run of a page's server requests. */
struct NCloudDocsRequestTaskParam
{
    bool flag = false;
    qint64 buildTime = 0;
    qint64 second = 0;
    QString fileId;
    QString officeType;
    QString url; //!< the page's URL
    QString frontVer;
    QString connId;
    QString injectId;
};

/**
 * Drives the documents server client of one load, or of a page's transfers, and turns its replies into results.
 * User-interface thread; owned by whom it serves.
 */
class NCloudDocsRequestTask : public QObject
{
    Q_OBJECT
public:
    explicit NCloudDocsRequestTask(QObject* parent);
    ~NCloudDocsRequestTask() override;

    // The version check is sent once, also by a task that goes on where another one ended.
    bool hasAskedVersion() const { return m_client->hasAskedVersion(); }
    void setVersionAsked() { m_client->setVersionAsked(); }
    /** What is still on its way is dropped. */
    void abandon() { m_client->abandon(); }
    /** Starts a run, unless no local package is available for the document. */
    void startRequest(const NCloudDocsRequestTaskParam& param);
    /** Asks for the version check of a file outside a run. */
    void startVcsRequest(const QString& key);
    void startDataUpgrade(const QString& url, const QString& packageInfo, const QString& filePath);
    void startDownloadFileFromURL(const QString& url, const QString& savePath);
    /** Whether the file's requests of the last run were sent. */
    bool hasStartedPreRequest() const { return m_client->hasStartedPreRequest(); }
    QJsonObject getOpenFileRequestBody() const;
    NHelioCloudDocsNetwork::HeaderPairs getOpenFileResponseHeaders() const;

Q_SIGNALS:
    void requestTaskFinished(const NCloudDocsRequestTaskResult& result);
    void sigStartedPreRequest();
    void sigRequestFromApiFinished(const QString& replyName, const QByteArray& data);
    void sigAppendResponseCookies(const QList<QNetworkCookie>& cookies);

public Q_SLOTS:
    void onStartedPreRequest();
    void onCloudDocRequestFinished(const QString& replyName, const QString& officeType,
                                   const QByteArray& body, qint64 startMs, qint64 endMs,
                                   const QString& frontVer);

private:
    bool m_mustUpgrade = false;
    qint64 m_buildTime = 0;
    qint64 m_second = 0;
    QString m_fileId;
    QString m_officeType;
    QString m_url;
    QString m_frontVer;
    QString m_connId;
    QString m_injectId;
    NHelioCloudDocsNetwork* m_client;
};

/** What a run rests on. */
namespace nrequestrun {

/** The package that serves the file: of the version that it was opened with last, else the plug-in's; may be
 * empty. */
QString retrieveDopPluginPath(const NCloudDocsRequestTaskParam& param);
/** Whether the server said that the version must not be used any more for the URL's office type. */
bool isFrontVerMustUpgrade(const QString& frontVer, const QString& url);

} // namespace nrequestrun
