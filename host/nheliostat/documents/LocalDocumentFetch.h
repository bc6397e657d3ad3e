#pragma once

#include "nheliostat/NHelioCloudSvrProxy.h"
#include "nheliostat/documents/LocalDocumentRequest.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>

class QNetworkReply;

/** Where files of the cloud come from. */
struct LocalDocumentSource
{
    QPointer<NHelioCloudSvrProxy> service; //!< null for none
    QString apiUrl;                        //!< of the documents service; empty for none
};

/**
 * Brings one file of the cloud into a directory. A document of the documents service comes as its export
 * (HTML); everything else is downloaded by the cloud service. Ends with exactly one of `fetched` and
 * `failed`, at a later turn of the event loop, unless it is destroyed first, which ends a download.
 * User-interface thread.
 */
class LocalDocumentFetch final : public QObject
{
    Q_OBJECT
public:
    /** `directory` exists and belongs to the fetch alone. */
    LocalDocumentFetch(LocalDocumentSource source, LocalDocumentRequest request, QString directory,
                       QObject* parent = nullptr);
    ~LocalDocumentFetch() override;

    /** Once. */
    void start();

Q_SIGNALS:
    /** 0 to 100. */
    void progressed(int percent);
    /** `name` is what the document is called; the file's own name when it is empty. */
    void fetched(const QString& path, const QString& name);
    void failed(const QString& why);

private Q_SLOTS:
    void onDownloadAccepted(bool success, const QString& requestId, const DownloadCloudFilesResult& result);
    void onDownloadState(bool success, const QString& requestId, const NRpcResponse& reply);

private:
    void askForExport();
    void onExportAnswered();
    void storeExport(const QByteArray& body);
    void download();
    void pollDownload();
    void fail(const QString& why);

    LocalDocumentSource m_source;
    LocalDocumentRequest m_request;
    QString m_directory;
    QPointer<QNetworkReply> m_export;
    QString m_taskIds;
    bool m_isDownloading = false;
    QTimer m_pollTimer;
    int m_failedPolls = 0;
};
