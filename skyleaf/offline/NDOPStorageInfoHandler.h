#pragma once

#include "offline/NDocsOfflinePageJSApiHandlerBase.h"

#include <QPointer>

/** The script handler "docs.storage.info": the local storage packages of documents. */
class NDOPStorageInfoHandler : public NDocsOfflinePageJSApiHandlerBase
{
    Q_OBJECT
public:
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

private:
    QPointer<QObject> m_host;
};
