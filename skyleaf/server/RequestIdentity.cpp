#include "server/RequestIdentity.h"

#include "base/NReadOnce.h"
#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioCloudSvrProxy.h"
#include "proxy/NDOPSettings.h"
#include "tava/AuthCode.h"
#include "zeolite/NAccountSdkProxy.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NDomainMgr.h"

namespace requestidentity {
namespace {

NHelioUserInfo currentUser()
{
    const NHelioApplication* application = NHelioApplication::instance();
    const NHelioCloudSvrProxy* proxy = application ? application->cloudSvrProxy() : nullptr;
    NHelioUserInfo user;
    if (proxy)
        proxy->currentUserInfo(user);
    return user;
}

/** Adds the headers that let the request act for the user. */
void buildAuthHeaders(DocsRequest& request, const NHelioUserInfo& user, const QString& path)
{
    const QMap<QString, QByteArray> headers = vlt::tava::rpcGenerateAuthCodeHeaderDataByApp(
        QByteArrayLiteral("account"), QByteArrayLiteral("pc-office"), user.identity1.toLocal8Bit(),
        user.identity2.toLocal8Bit(), path);
    for (auto header = headers.begin(); header != headers.end(); ++header)
        request.headers.insert(header.key(), header.value());
}

/** True when the account SDK filled the headers; otherwise they are as they were. */
bool authenticateByAccount(DocsRequest& request, const QString& method)
{
    NCoreApplication* core = NCoreApplication::instance();
    NAccountSdkProxy* sdk = core && nsettingsvalues::isAccountSdkUsed() ? core->getAccountSDK() : nullptr;
    NAccountAuthProvider* provider = sdk ? sdk->getAuthProvider() : nullptr;
    if (!provider)
        return false;
    QVariantMap headers = request.headers;
    if (!provider->prepare(headers, method, request.url) || !provider->sign(headers, request.url))
        return false;
    request.headers = headers;
    request.cookies = headers.value(QStringLiteral("Cookie")).toString();
    return true;
}

} // namespace

QByteArray pageUserAgent()
{
    const QString scriptCore =
        nsettingsvalues::isUserAgentModified() ? zeolite::scriptCoreUserAgent() : QString();
    return (scriptCore.isEmpty() ? NxUserAgentUtil::getUserAgent() : scriptCore).toUtf8();
}

QString originHost()
{
    NCoreApplication* core = NCoreApplication::instance();
    const NDomainMgr* domains = core ? core->getDomainMgr() : nullptr;
    return domains ? domains->documentsServiceHost() : QString();
}

QString userCookies()
{
    return currentUser().cookies;
}

QString branchCookie()
{
    static NReadOnce<QString> cookie([] {
        const QString branch = nsettingsvalues::webofficeBranch();
        return branch.isEmpty() ? QString() : QStringLiteral("weboffice_branch=%1;").arg(branch);
    });
    return cookie();
}

void authenticate(DocsRequest& request, const QString& method, const QString& path)
{
    if (!authenticateByAccount(request, method)) {
        const NHelioUserInfo user = currentUser();
        request.cookies = user.cookies;
        buildAuthHeaders(request, user, path);
    }
    request.cookies += branchCookie() + QStringLiteral("vlt_endcloud=1;");
}

} // namespace requestidentity
