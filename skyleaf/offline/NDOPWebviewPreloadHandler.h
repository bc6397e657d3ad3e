#pragma once

#include "offline/NDocsOfflinePageJSApiHandlerBase.h"

#include <QPointer>

class IPreloadedReplies;
class QTimer;

/**
 * The script handler "webview.preload": replies that the page fetched in advance, by their keys. A reply that
 * is still on its way is waited for. User-interface thread.
 */
class NDOPWebviewPreloadHandler : public NDocsOfflinePageJSApiHandlerBase
{
    Q_OBJECT
public:
    /** `host` is an IPreloadedReplies, or null: then nothing can be asked for. */
    NDOPWebviewPreloadHandler(QObject* parent, NxWebViewAsynJSObject* scriptObject, QObject* host);

    void setHost(QObject* host) { m_host = host; }
    /** Answers the script when it waits for the key. Times are milliseconds since the epoch, -1 for none. */
    void notifyDOPPreloadData(const QString& key, const QByteArray& body, qint64 startMs, qint64 endMs,
                              const QString& error);

public Q_SLOTS:
    void prefetch(NxWebViewJSContext& context);

    void onResopnseTimeout();

private:
    const IPreloadedReplies* preloadedReplies() const;
    void startTimer(const QString& key, int timeoutMs);
    void cancelTimer(const QString& key);
    void forgetWaiting();

    QMap<QString, NxWebViewJSCallback> m_waiting; //!< by key, of the present document only
    QMap<QString, QPointer<QTimer>> m_timers;
    QPointer<QObject> m_host;
};
