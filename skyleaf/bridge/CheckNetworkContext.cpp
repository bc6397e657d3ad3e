#include "bridge/CheckNetworkContext.h"

#include "zeolite/NxWebViewAsynJSObject.h"
#include "zeolite/NxWebViewJSContext.h"

#include <QTimer>

#include <utility>

namespace {

constexpr int longestCheckMs = 5000;

} // namespace

CheckNetworkContext::CheckNetworkContext(NxWebViewJSCallback callback, QNetworkReply* reply,
                                         NxWebViewAsynJSObject* bridge)
    : m_callback(std::move(callback))
    , m_reply(reply)
    , m_bridge(bridge)
{
    connect(reply, &QNetworkReply::errorOccurred, this, &CheckNetworkContext::onError);
    connect(reply, &QNetworkReply::finished, this, &CheckNetworkContext::onFinished);
    QTimer::singleShot(longestCheckMs, this, &CheckNetworkContext::onTimeout);
}

CheckNetworkContext::~CheckNetworkContext()
{
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->deleteLater();
    }
}

void CheckNetworkContext::onError(QNetworkReply::NetworkError)
{
    answer("false");
}

void CheckNetworkContext::onFinished()
{
    answer("true");
}

void CheckNetworkContext::onTimeout()
{
    answer("false");
}

void CheckNetworkContext::answer(const char* status)
{
    if (std::exchange(m_answered, true))
        return;
    deleteLater();
    if (!m_bridge || m_callback.isEmpty())
        return;
    NxWebViewJSContext context(m_callback.document);
    context.parse(QStringLiteral("fake_method"), m_callback.name, {});
    context.reply()["status"] = status;
    m_bridge->publishResult(context);
}
