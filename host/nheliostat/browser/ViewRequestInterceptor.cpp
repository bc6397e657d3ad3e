#include "nheliostat/browser/ViewRequestInterceptor.h"

#include "nheliostat/gateway/RequestGateway.h"

namespace nheliostat::browser {

ViewRequestInterceptor::ViewRequestInterceptor(QByteArray viewId, QByteArray userAgent, QObject* parent)
    : QWebEngineUrlRequestInterceptor(parent)
    , m_viewId(std::move(viewId))
    , m_userAgent(std::move(userAgent))
{
}

void ViewRequestInterceptor::setHeaderHandler(NxWebViewContainer::CustomHeaderHandler handler)
{
    m_handler = std::move(handler);
}

void ViewRequestInterceptor::interceptRequest(QWebEngineUrlRequestInfo& info)
{
    const QString scheme = info.requestUrl().scheme();
    if (scheme != QLatin1String("http") && scheme != QLatin1String("https"))
        return;
    if (m_handler) {
        const QByteArray userAgentName = QByteArrayLiteral("User-Agent");
        QMap<QByteArray, QByteArray> headers{{userAgentName, m_userAgent}};
        m_handler(headers);
        for (auto header = headers.cbegin(); header != headers.cend(); ++header) {
            if (header.key() != userAgentName || header.value() != m_userAgent)
                info.setHttpHeader(header.key(), header.value());
        }
    }
    info.setHttpHeader(QByteArray(RequestGateway::viewHeader), m_viewId);
}

} // namespace nheliostat::browser
