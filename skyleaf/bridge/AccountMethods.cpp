#include "bridge/CheckNetworkContext.h"
#include "bridge/NHelioCloudDocsAsynJsObj.h"
#include "bridge/ShellAccess.h"
#include "bridge/TransferStates.h"

#include "base/NDomains.h"
#include "zeolite/NCloudSvrProxy.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NxWebViewJSContext.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QMessageBox>
#include <QNetworkRequest>
#include <QUrl>

#include <string>

// The script methods of the account and its services.

namespace {

void showMethodName(const char* method)
{
    QMessageBox box;
    box.setText(QString::fromLatin1(method));
    box.exec();
}

/** A small public file of the documents site, over plain HTTP. */
QUrl networkCheckUrl()
{
    QUrl url;
    url.setScheme(QStringLiteral("http"));
    url.setHost(ndomains::host(QStringLiteral("quill")));
    url.setPath(QStringLiteral("/robots.txt"));
    return url;
}

/** What a failed call of the cloud tells the page. */
void writeRoamingError(NxWebViewJSContext& context, const char* message)
{
    context.reply()["callstatus"] = "error";
    context.reply()["errormsg"] = message;
    context.reply()["mode"] = "unknown";
}

} // namespace

void NHelioCloudDocsAsynJsObj::tavaLogin(NxWebViewJSContext& context)
{
    login(context);
}

void NHelioCloudDocsAsynJsObj::tavaLogout(NxWebViewJSContext& context)
{
    logout(context);
}

void NHelioCloudDocsAsynJsObj::tavaOpenVipUrl(NxWebViewJSContext& context)
{
    openUrlTava(context);
}

void NHelioCloudDocsAsynJsObj::tavaCheckLogined(NxWebViewJSContext& context)
{
    const NHelioUserInfo user = shellaccess::user();
    context.reply()["logined"] = user.loggedIn;
    context.reply()["userid"] = user.loggedIn ? user.userId.toStdString() : std::string();
    context.reply()["vltkey"] = user.loggedIn ? user.sessionKey.toStdString() : std::string();
}

void NHelioCloudDocsAsynJsObj::getVlt_sid(NxWebViewJSContext& context)
{
    if (!shellaccess::cloudService())
        return;
    const NHelioUserInfo user = shellaccess::user();
    context.reply()["sid"] = user.loggedIn ? user.sessionKey.toStdString() : std::string();
}

void NHelioCloudDocsAsynJsObj::registerCookieUpdateHandler(NxWebViewJSContext& context)
{
    m_loginCallback = context.getCallback(QStringLiteral("callback"));
}

void NHelioCloudDocsAsynJsObj::notifyLoginStatus()
{
    const NHelioCloudSvrProxy* proxy = shellaccess::cloudService();
    if (!proxy || m_loginCallback.isEmpty())
        return;
    const bool isLoggedIn = proxy->isLoggedIn();
    const NHelioUserInfo user = isLoggedIn ? shellaccess::user() : NHelioUserInfo();
    callNamedCallback(m_loginCallback, {{QStringLiteral("act"), QStringLiteral("notifyLoginStatus")},
                                        {QStringLiteral("logined"), isLoggedIn ? 1 : 0},
                                        {QStringLiteral("userid"), user.userId},
                                        {QStringLiteral("vltkey"), user.sessionKey}});
}

void NHelioCloudDocsAsynJsObj::callNamedCallback(const NxWebViewJSCallback& callback, const QJsonObject& data)
{
    if (!callback.isEmpty())
        callbackToJS(callback, onOneLine(QString::fromUtf8(QJsonDocument(data).toJson())), false);
}

void NHelioCloudDocsAsynJsObj::getRoamingMode(NxWebViewJSContext& context)
{
    if (NHelioCloudSvrProxy* proxy = shellaccess::cloudService()) {
        m_pendingContexts.insert(
            proxy->callCloudMethod(QStringLiteral("getRoamingMode"), {}, this, "OnGetRoamingMode"), context);
    }
}

void NHelioCloudDocsAsynJsObj::OnGetRoamingMode(bool success, const QString& requestId,
                                                const NRpcResponse& reply)
{
    if (!m_pendingContexts.contains(requestId))
        return;
    NxWebViewJSContext context = m_pendingContexts.take(requestId);
    if (success)
        context.reply()["mode"] = reply.values.value(QStringLiteral("roamingmode")).toStdString();
    else
        writeRoamingError(context, "rpc call getRoamingMode error");
    publishResult(context);
}

void NHelioCloudDocsAsynJsObj::setRoamingMode(NxWebViewJSContext& context)
{
    if (NHelioCloudSvrProxy* proxy = shellaccess::cloudService()) {
        m_pendingContexts.insert(
            proxy->callCloudMethod(QStringLiteral("changeRoamingMode"), {}, this, "OnSetRoamingMode"),
            context);
    }
}

void NHelioCloudDocsAsynJsObj::OnSetRoamingMode(bool success, const QString& requestId, const NRpcResponse&)
{
    if (!m_pendingContexts.contains(requestId))
        return;
    NxWebViewJSContext context = m_pendingContexts.take(requestId);
    if (!success)
        writeRoamingError(context, "rpc call setRoamingMode error");
    publishResult(context);
}

void NHelioCloudDocsAsynJsObj::checkNetwork(NxWebViewJSContext& context)
{
    context.reply()["ignoreThisJsCallback"] = "true";
    // The context deletes itself.
    new CheckNetworkContext(context.getCallback(QStringLiteral("callback")),
                            m_network->get(QNetworkRequest(networkCheckUrl())), this);
}

void NHelioCloudDocsAsynJsObj::showNetDetect(NxWebViewJSContext&)
{
    NCoreApplication* core = NCoreApplication::instance();
    NCloudSvrProxy* service = core ? core->getCloudSvrProxy() : nullptr;
    if (!service)
        return;
    const QString title = QString::fromLatin1(
        QCoreApplication::translate("NHelioCloudDocsAsynJsObj", "VLT Diagnositic").toUtf8().toBase64());
    int resultCode = 0;
    for (const int kind : {2, 3, 1}) {
        if (service->startDiagnosis(kind, QStringLiteral("yunkit_cloudDocsAsyn"), resultCode, title))
            return;
    }
}

void NHelioCloudDocsAsynJsObj::openVirtualCloudDisk(NxWebViewJSContext&)
{
    NHelioCloudSvrProxy* proxy = shellaccess::cloudService();
    if (!proxy)
        return;
    const NHelioUserInfo user = shellaccess::user();
    if (user.loggedIn)
        proxy->openVirtualCloudDisk(user.userId, QString(), QString(), QStringLiteral("cloudpage"), false);
    else
        proxy->showLoginPrompt(nullptr, QString(), QString());
}

void NHelioCloudDocsAsynJsObj::upgradeVip(NxWebViewJSContext& context)
{
    if (NHelioCloudSvrProxy* proxy = shellaccess::cloudService()) {
        proxy->showMembershipUpgrade(context.getValue(QStringLiteral("pageSource"), QString()).toString(),
                                     QString(), 0, 0);
    }
    context.reply()["result"] = true;
}

void NHelioCloudDocsAsynJsObj::showVipUpgradeDialog(NxWebViewJSContext&)
{
    showMethodName("showVipUpgradeDialog");
}

void NHelioCloudDocsAsynJsObj::gotoH5Page(NxWebViewJSContext&)
{
    showMethodName("gotoH5Page");
}

void NHelioCloudDocsAsynJsObj::shareFile(NxWebViewJSContext&)
{
    showMethodName("shareFile");
}

void NHelioCloudDocsAsynJsObj::showUserSecureIdentityDialog(NxWebViewJSContext&)
{
    showMethodName("showUserSecureIdentityDialog");
}
