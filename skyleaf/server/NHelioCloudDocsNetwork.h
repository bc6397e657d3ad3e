#pragma once

#include "nnetwork/INetworkManager.h"
#include "server/RequestOverride.h"

#include <QJsonObject>
#include <QList>
#include <QNetworkAccessManager>
#include <QNetworkCookie>
#include <QObject>
#include <QPair>
#include <QString>

#include <functional>
#include <memory>

class NHelioCloudDocsLocalData;
class QNetworkReply;

/**
 * Talks to the documents server for one page. User-interface thread; its parent is the page's request task.
 *
 * A request that lacks what it needs (the network library, the shell, the service's address) is silently not
 * sent. A reply of an earlier run, or of another file, is reported and otherwise dropped.
 */
class NHelioCloudDocsNetwork : public QObject
{
    Q_OBJECT
public:
    using HeaderPairs = QList<QPair<QByteArray, QByteArray>>;

    explicit NHelioCloudDocsNetwork(QObject* requestTask);

    void setRequestParams(qint64 buildTime, qint64 second, const QString& frontVer, bool mustUpgrade);
    void setConnId(const QString& connId) { m_connId = connId; }
    void setInjectId(const QString& injectId) { m_injectId = injectId; }
    void setStartTimeFromUrl(const QString& pageUrl);

    /** Starts one run: version check or package information, then what the file's first screen needs. */
    void startPreRequests(const QString& fileId, const QString& officeType);
    /** Sends the version check, once in this object's life. True when it was sent now or earlier. */
    bool startVcsRequest(const QString& key);
    void startDataUpgrade(const QString& url, const QString& packageInfo, const QString& filePath);
    void startDownloadFileFromURL(const QString& url, const QString& savePath);

    /** Drops what is still on its way: queries, requests that wait for them, replies. */
    void abandon();
    bool hasAskedVersion() const { return m_vcsStarted; }
    /** The version check of the file was sent by another client. */
    void setVersionAsked() { m_vcsStarted = true; }
    bool hasStartedPreRequest() const { return m_startedPreRequest; }
    QJsonObject openFileRequestBody() const { return m_openFileRequestBody; }
    HeaderPairs openFileResponseHeaders() const { return m_openFileResponseHeaders; }

Q_SIGNALS:
    void sigRequestFromApiFinished(const QString& replyName, const QByteArray& data);
    void sigRequestFromHostWidgetFinished(const QString& replyName, const QString& officeType,
                                          const QByteArray& body, qint64 startMs, qint64 endMs,
                                          const QString& frontVer);
    void sigAppendResponseCookies(const QList<QNetworkCookie>& cookies);
    void sigStartPreRequest();

public Q_SLOTS:
    void onQueryLocalDataFinish();
    void onFinished(QNetworkReply* reply);
    /** `frontVer`: the front version that the request was sent with. */
    void onRequestFinished(INetworkReply* reply, quint64 startMs, const QString& replyName,
                           const QString& frontVer = {});

private:
    bool ensureNetworkManager();
    void forgetLocalData();
    bool canSend() const;
    void _startGetResPckInfo();
    void _startGetOfficeConfigInfo(int officeConfigType);
    void _startGetFirstScreenData();
    void applyRequestOverride(const QString& routeKey, DocsRequest& request) const;
    INetworkManager::Completion completionOf(const QString& replyName, const QString& fileId);
    void sendGet(const DocsRequest& request, const QString& replyName, const QString& fileId);
    void sendPost(const DocsRequest& request, const QByteArray& body, const QString& replyName,
                  const QString& fileId);
    /** False when it cannot be sent. */
    bool postDataUpgrade(const QString& url, const QString& packageInfo, const QString& filePath,
                         const QByteArray& content);
    bool isOfPresentRun(const QString& fileId, const QString& connId) const;
    void takeFileReply(const INetworkReply& reply, const QString& replyName, qint64 startMs, qint64 endMs);
    void _reportNetworkResult(int errorCode, const QString& url, qint64 useTime, qint64 networkUseTime,
                              const QString& name) const;

    QString m_fileId;
    QString m_officeType;
    qint64 m_buildTime = 0;
    qint64 m_second = 0;
    QString m_frontVer;
    bool m_mustUpgrade = false;
    QNetworkAccessManager* m_downloadAccessManager = nullptr;
    QNetworkAccessManager* m_upgradeAccessManager = nullptr;
    NHelioCloudDocsLocalData* m_localData = nullptr;
    QString m_connId;
    QJsonObject m_openFileRequestBody;
    HeaderPairs m_openFileResponseHeaders;
    QString m_injectId;
    std::shared_ptr<INetworkManager> m_networkManager;
    bool m_isAbandoned = false;
    bool m_vcsStarted = false;
    QString m_startTime;
    bool m_startedPreRequest = false;
};
