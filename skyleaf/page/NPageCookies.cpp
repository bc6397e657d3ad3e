#include "page/NPageCookies.h"

#include "base/NClock.h"
#include "base/NDocsLog.h"
#include "base/NDomains.h"
#include "bridge/ShellAccess.h"
#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nrt/product.h"
#include "page/ClientIdentity.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NxWebViewContainer.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr quint32 accountCapability = 0x40000;
constexpr int sessionDays = 14;
constexpr int branchDays = 14;
constexpr int identityYears = 1;

QString proxySessionId()
{
    const NHelioUserInfo user = shellaccess::user();
    return user.loggedIn ? user.sessionKey : QString();
}

QString accountSessionId()
{
    const NHelioApplication* application = NHelioApplication::instance();
    const NHelioAccount* account = application ? application->account() : nullptr;
    return account && account->isLoggedIn() ? account->sessionId() : QString();
}

QNetworkCookie cookieFor(const QString& url, const QByteArray& name, const QByteArray& value,
                         const QDateTime& expiry)
{
    QNetworkCookie cookie(name, value);
    cookie.setPath(QStringLiteral("/"));
    cookie.setDomain(QUrl(url).host());
    cookie.setExpirationDate(expiry);
    return cookie;
}

QNetworkCookie sessionCookie(const QString& url, const QString& sessionId, bool isSecure)
{
    QNetworkCookie cookie =
        cookieFor(url, QByteArrayLiteral("vlt_sid"), sessionId.toUtf8(), nclock::now().addDays(sessionDays));
    cookie.setSecure(isSecure);
    cookie.setHttpOnly(true);
    return cookie;
}

QNetworkCookie identityCookie(const QString& url)
{
    return cookieFor(url, QByteArrayLiteral("vltua"), clientidentity::token(),
                     nclock::now().addYears(identityYears));
}

void writeCookie(NHelioBrowserWidgetBase& browser, const QString& url, const QNetworkCookie& cookie)
{
    if (url.isEmpty())
        return;
    const QString name = QString::fromLatin1(cookie.name());
    browser.setCookie(QUrl(url), cookie, [name, url](bool stored) {
        if (!stored)
            ndocslog::warning(QStringLiteral("cookie %1 refused for %2").arg(name, url),
                              "NHelioCloudDocsPage::_updateCookies");
    });
}

QString rootUrl()
{
    const QString url = ndomains::url(QStringLiteral("root"));
    return url.endsWith(QLatin1Char('*')) ? url.chopped(1) : url;
}

/** Intranet deployments may sign in without encryption; a secure cookie would never be sent there. */
bool isDocsSessionSecure()
{
    return !nrt::kcmc::support(QStringLiteral("IntranetVersion")) ||
           !ndomains::url(QStringLiteral("account")).startsWith(QLatin1String("http:"));
}

/** The branch of the front end that the installation is told to run; empty for the released one. */
QString frontEndBranch()
{
    const NCoreApplication* core = NCoreApplication::instance();
    const QByteArray text = core ? core->debugInfo().toUtf8() : QByteArray();
    return QJsonDocument::fromJson(text).object().value(QLatin1String("weboffice_branch")).toString();
}

void writeBranchCookie(NHelioBrowserWidgetBase& browser)
{
    const QString branch = frontEndBranch();
    if (branch.isEmpty())
        return;
    const QString docs = ndomains::url(QStringLiteral("quill"));
    writeCookie(browser, docs,
                cookieFor(docs, QByteArrayLiteral("weboffice_branch"), branch.toUtf8(),
                          nclock::now().addDays(branchDays)));
}

} // namespace

void NPageCookies::writeAll(NHelioBrowserWidgetBase& browser) const
{
    if (zeolite::isSupported(accountCapability)) {
        const QString root = rootUrl();
        writeCookie(browser, root, sessionCookie(root, accountSessionId(), false));
        writeCookie(browser, root, identityCookie(root));
        return;
    }
    const QString session = proxySessionId();
    const QString drive = ndomains::url(QStringLiteral("drive"));
    writeCookie(browser, drive, sessionCookie(drive, session, false));
    writeCookie(browser, drive, identityCookie(drive));
    const QString docs = ndomains::url(QStringLiteral("quill"));
    writeCookie(browser, docs, sessionCookie(docs, session, isDocsSessionSecure()));
    writeCookie(browser, docs, identityCookie(docs));
    writeBranchCookie(browser);
}

void NPageCookies::writeFor(NHelioBrowserWidgetBase& browser, const QString& url) const
{
    if (url.isEmpty())
        return;
    const QString session = proxySessionId();
    if (session.isEmpty())
        ndocslog::info(QStringLiteral("vlt_sid is empty"), "NHelioCloudDocsPage::_updateCookie");
    else
        writeCookie(browser, url, sessionCookie(url, session, false));
    writeCookie(browser, url, identityCookie(url));
}

void NPageCookies::append(const QList<QNetworkCookie>& cookies)
{
    ndocslog::info(QStringLiteral("append response cookies"), "NHelioCloudDocsPage::onAppendResponseCookies");
    m_ofReplies.append(cookies);
}

void NPageCookies::giveReplyCookies(NxWebViewContainer* container, const QString& pageUrl) const
{
    if (!container || pageUrl.isEmpty() || m_ofReplies.isEmpty())
        return;
    const QString host = ndomains::host(QStringLiteral("quill"));
    for (QNetworkCookie cookie : m_ofReplies) {
        if (cookie.domain().isEmpty())
            cookie.setDomain(host);
        container->setCookie(QUrl(pageUrl), cookie, {});
    }
}
