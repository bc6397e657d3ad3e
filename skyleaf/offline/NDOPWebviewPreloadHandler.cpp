#include "offline/NDOPWebviewPreloadHandler.h"

#include "base/NDocsLog.h"
#include "offline/IPreloadedReplies.h"
#include "offline/LargeReply.h"
#include "zeolite/NxWebViewAsynJSObject.h"

#include <QJsonObject>
#include <QTimer>

#include <limits>

namespace {

constexpr auto keyProperty = "key";

/** Milliseconds; what is no number counts as 0. */
int timeoutOf(const QVariantMap& arguments)
{
    constexpr double longest = std::numeric_limits<int>::max();
    constexpr int timeoutMs = 2000;
    return static_cast<int>(
        qBound(0.0, arguments.value(QStringLiteral("timeout"), timeoutMs).toDouble(), longest));
}

QJsonObject headersOf(const IPreloadedReplies& replies)
{
    QJsonObject headers;
    for (const auto& [name, value] : replies.openFileResponseHeaders())
        headers.insert(QString::fromUtf8(name), QString::fromUtf8(value));
    return headers;
}

} // namespace

NDOPWebviewPreloadHandler::NDOPWebviewPreloadHandler(QObject* parent, NxWebViewAsynJSObject* scriptObject,
                                                     QObject* host)
    : NDocsOfflinePageJSApiHandlerBase(parent, scriptObject)
    , m_host(host)
{
    if (scriptObject) {
        connect(scriptObject, &NxWebViewAsynJSObject::documentEnded, this,
                &NDOPWebviewPreloadHandler::forgetWaiting);
    }
}

const IPreloadedReplies* NDOPWebviewPreloadHandler::preloadedReplies() const
{
    return dynamic_cast<const IPreloadedReplies*>(m_host.data());
}

void NDOPWebviewPreloadHandler::prefetch(NxWebViewJSContext& context)
{
    const QVariantMap arguments = parseContextArgs(context, true);
    const QString key = arguments.value(QStringLiteral("key")).toString();
    const NxWebViewJSCallback callback = context.getCallback(QStringLiteral("dataCallbackName"));
    if (key.isEmpty() || callback.isEmpty())
        return replyError(context, QStringLiteral("param isEmpty"));
    const IPreloadedReplies* replies = preloadedReplies();
    if (!replies)
        return replyError(context, QStringLiteral("host widget null"));
    m_waiting.insert(key, callback);
    cancelTimer(key);
    if (const std::optional<NPreloadedReply> reply = replies->preloadedReply(key)) {
        ndocslog::info(QStringLiteral("key: %1, preloadData be ready").arg(key),
                       "NDOPWebviewPreloadHandler::prefetch");
        notifyDOPPreloadData(key, reply->body, reply->startTime, reply->endTime, QString());
    } else {
        startTimer(key, timeoutOf(arguments));
    }
}

void NDOPWebviewPreloadHandler::startTimer(const QString& key, int timeoutMs)
{
    auto* timer = new QTimer(this);
    timer->setProperty(keyProperty, key);
    timer->setSingleShot(true);
    timer->setInterval(timeoutMs);
    connect(timer, &QTimer::timeout, this, &NDOPWebviewPreloadHandler::onResopnseTimeout);
    m_timers.insert(key, timer);
    timer->start();
    ndocslog::info(QStringLiteral("key: %1, request not response, start timeout timer %2ms")
                       .arg(key, QString::number(timeoutMs)),
                   "NDOPWebviewPreloadHandler::prefetch");
}

void NDOPWebviewPreloadHandler::cancelTimer(const QString& key)
{
    if (QTimer* timer = m_timers.take(key)) {
        timer->stop();
        timer->deleteLater();
    }
}

void NDOPWebviewPreloadHandler::forgetWaiting()
{
    if (m_waiting.isEmpty())
        return;
    const QStringList keys = m_waiting.keys();
    for (const QString& key : keys)
        cancelTimer(key);
    m_waiting.clear();
    ndocslog::info(QStringLiteral("key: %1, the document that waits is gone").arg(keys.join(u',')),
                   "NDOPWebviewPreloadHandler::forgetWaiting");
}

void NDOPWebviewPreloadHandler::notifyDOPPreloadData(const QString& key, const QByteArray& body,
                                                     qint64 startMs, qint64 endMs, const QString& error)
{
    cancelTimer(key);
    const NxWebViewJSCallback callback = m_waiting.take(key);
    if (callback.isEmpty())
        return;
    QJsonObject result{
        {QStringLiteral("page"), QJsonObject{{QStringLiteral("cur"), 0}, {QStringLiteral("total"), 1}}},
        {QStringLiteral("requestTime"),
         QJsonObject{{QStringLiteral("startTime"), startMs}, {QStringLiteral("endTime"), endMs}}}};
    const IPreloadedReplies* replies = preloadedReplies();
    if (replies && key == QLatin1String("open_file")) {
        result.insert(QStringLiteral("requestBody"), replies->openFileRequestBody());
        result.insert(QStringLiteral("responseHeaders"), headersOf(*replies));
    }
    const QString answer = nlargereply::withBody(
        body, result, {{QStringLiteral("callstatus"), QStringLiteral("ok")}, {QStringLiteral("err"), error}});
    callBack(callback, answer);
    ndocslog::info(QStringLiteral("key: %1, preloadData callbackToJS").arg(key),
                   "NDOPWebviewPreloadHandler::notifyDOPPreloadData");
}

void NDOPWebviewPreloadHandler::onResopnseTimeout()
{
    const QString key = sender() ? sender()->property(keyProperty).toString() : QString();
    if (key.isEmpty())
        return;
    ndocslog::info(QStringLiteral("key: %1, request timeout").arg(key),
                   "NDOPWebviewPreloadHandler::onResopnseTimeout");
    notifyDOPPreloadData(key, {}, -1, -1, QStringLiteral("request timeout"));
}
