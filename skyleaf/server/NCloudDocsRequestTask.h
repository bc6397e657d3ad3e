#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QNetworkCookie>
#include <QObject>
#include <QPair>
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

/** One reply of the documents server. Times are milliseconds since the epoch. */
struct NCloudDocsRequestTaskResult
{
    QString replyName;
    QString fileId;
    QString officeType;
    QString connId;
    QString injectId;
    qint64 startTime = 0;
    qint64 endTime = 0;
    QString frontVer;
    QByteArray data;
};
Q_DECLARE_METATYPE(NCloudDocsRequestTaskResult)

/** Drives the documents server client of one page. User-interface thread; owned by the page. */
class NCloudDocsRequestTask : public QObject
{
    Q_OBJECT
public:
    explicit NCloudDocsRequestTask(QObject* page);

    /** Starts a run, unless no local package is available for the document. */
    void startRequest(const NCloudDocsRequestTaskParam& param);
    /** Asks for the version check of a file outside a run. */
    void startVcsRequest(const QString& key);
    void startDataUpgrade(const QString& url, const QString& packageInfo, const QString& filePath);
    void startDownloadFileFromURL(const QString& url, const QString& savePath);
    bool hasStartedPreRequest() const { return false; }
    QJsonObject getOpenFileRequestBody() const;
    QList<QPair<QByteArray, QByteArray>> getOpenFileResponseHeaders() const;

Q_SIGNALS:
    void requestTaskFinished(const NCloudDocsRequestTaskResult& result);
    void sigStartedPreRequest();
    void sigRequestFromApiFinished(const QString& replyName, const QByteArray& data);
    void sigAppendResponseCookies(const QList<QNetworkCookie>& cookies);
};
