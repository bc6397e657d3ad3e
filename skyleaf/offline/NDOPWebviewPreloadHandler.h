#pragma once

#include "offline/NDocsOfflinePageJSApiHandlerBase.h"

#include <QPointer>

/** The script handler "webview.preload": replies that the page fetched in advance. */
class NDOPWebviewPreloadHandler : public NDocsOfflinePageJSApiHandlerBase
{
    Q_OBJECT
public:
    NDOPWebviewPreloadHandler(QObject* parent, NxWebViewAsynJSObject* scriptObject, QObject* host);

    void setHost(QObject* host) { m_host = host; }
    /** Answers the page when it waits for the key. */
    void notifyDOPPreloadData(const QString& key, const QByteArray& body, qint64 startMs, qint64 endMs,
                              const QString& error);

public Q_SLOTS:
    void prefetch(NxWebViewJSContext& context);

private:
    QPointer<QObject> m_host;
};
