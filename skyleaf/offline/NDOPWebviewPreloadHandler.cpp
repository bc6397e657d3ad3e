#include "offline/NDOPWebviewPreloadHandler.h"

NDOPWebviewPreloadHandler::NDOPWebviewPreloadHandler(QObject* parent, NxWebViewAsynJSObject* scriptObject,
                                                     QObject* host)
    : NDocsOfflinePageJSApiHandlerBase(parent, scriptObject)
    , m_host(host)
{
}

void NDOPWebviewPreloadHandler::notifyDOPPreloadData(const QString& key, const QByteArray& body,
                                                     qint64 startMs, qint64 endMs, const QString& error)
{
    // Nobody can wait for a key while `prefetch` is not served.
    Q_UNUSED(key)
    Q_UNUSED(body)
    Q_UNUSED(startMs)
    Q_UNUSED(endMs)
    Q_UNUSED(error)
}

void NDOPWebviewPreloadHandler::prefetch(NxWebViewJSContext& context)
{
    replyNotServed(context);
}
