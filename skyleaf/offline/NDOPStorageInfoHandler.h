#pragma once

#include "offline/NDocsOfflinePageJSApiHandlerBase.h"
#include "tava/TavaIpcResult.h"

#include <QPointer>

class IStorageTransferHost;
class NHelioCloudSvrProxy;

/** The script handler "docs.storage.info": the local storage packages of documents. User-interface thread. */
class NDOPStorageInfoHandler : public NDocsOfflinePageJSApiHandlerBase
{
    Q_OBJECT
public:
    /** `host` is an IStorageTransferHost, or null: then nothing is transferred. */
    NDOPStorageInfoHandler(QObject* parent, NxWebViewAsynJSObject* scriptObject, QObject* host);

    void setHost(QObject* host) { m_host = host; }

Q_SIGNALS:
    void uploadFinished(const QByteArray& body);
    void downloadFinished(const QByteArray& result);

public Q_SLOTS:
    void create(NxWebViewJSContext& context);
    void select(NxWebViewJSContext& context);
    void update(NxWebViewJSContext& context);
    void remove(NxWebViewJSContext& context);
    void upload(NxWebViewJSContext& context);
    void download(NxWebViewJSContext& context);

    void onCreate(bool success, const QString& requestId, const TavaIpcResult& result);
    void onSelect(bool success, const QString& requestId, const TavaIpcResult& result);
    void onUpdate(bool success, const QString& requestId, const TavaIpcResult& result);
    void onRemove(bool success, const QString& requestId, const TavaIpcResult& result);
    void onUpload(const QByteArray& body);
    void onDownload(const QByteArray& result);

private:
    /** The way to the cloud service; null, with the reply written, when there is none. */
    NHelioCloudSvrProxy* cloudService(NxWebViewJSContext& context) const;
    IStorageTransferHost* transferHost(NxWebViewJSContext& context) const;
    void keepCallback(const NxWebViewJSContext& context, const QString& requestId);
    void answer(const QString& operation, bool success, const QString& requestId, const TavaIpcResult& result,
                bool withData = true);

    QPointer<QObject> m_host;
    NxWebViewJSCallback m_uploadCallback;
    NxWebViewJSCallback m_downloadCallback;
};
