#include "page/NHelioCloudDocsPage.h"

#include "base/NDocsLog.h"
#include "base/NDomains.h"
#include "bridge/NHelioCloudDocsAsynJsObj.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "zeolite/NxWebViewContainer.h"

// The cookies that the page gives its browser. The session's own cookies are not written yet.

void NHelioCloudDocsPage::_updateCookies(bool force)
{
    if (m_browser && m_jsObj && force)
        m_jsObj->notifyLoginStatus();
}

void NHelioCloudDocsPage::slot_beforeBrowser(bool& handled, const QString& url)
{
    Q_UNUSED(handled)
    Q_UNUSED(url)
}

void NHelioCloudDocsPage::onAppendResponseCookies(const QList<QNetworkCookie>& cookies)
{
    if (cookies.isEmpty())
        return;
    ndocslog::info(QStringLiteral("append response cookies"), "NHelioCloudDocsPage::onAppendResponseCookies");
    m_responseCookies.append(cookies);
    if (m_browser)
        giveResponseCookies(m_browser->webViewContainer());
}

void NHelioCloudDocsPage::giveResponseCookies(NxWebViewContainer* container)
{
    if (!container || m_notify_URL.isEmpty() || m_responseCookies.isEmpty())
        return;
    const QString host = ndomains::host(QStringLiteral("quill"));
    for (QNetworkCookie cookie : qAsConst(m_responseCookies)) {
        if (cookie.domain().isEmpty())
            cookie.setDomain(host);
        container->setCookie(QUrl(m_notify_URL), cookie, {});
    }
}
