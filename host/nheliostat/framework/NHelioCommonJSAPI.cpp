#include "nheliostat/NHelioCommonJSAPI.h"

#include "nheliostat/NHelioApplication.h"
#include "nheliostat/framework/ScriptReply.h"
#include "nheliostat/framework/ShellApplication.h"
#include "nheliostat/framework/ShellLook.h"
#include "zeolite/JsonHelper.h"
#include "zeolite/NxJSApiEventHandler.h"

#include <QJsonObject>
#include <QMetaMethod>
#include <QUrl>

namespace scriptreply = nheliostat::scriptreply;

namespace {

/** The members that are texts, and numbers and booleans as texts; others are left out. */
QMap<QString, QString> textMembers(const QJsonObject& data)
{
    QMap<QString, QString> members;
    for (auto member = data.begin(); member != data.end(); ++member) {
        const QJsonValue value = member.value();
        if (value.isString() || value.isDouble() || value.isBool())
            members.insert(member.key(), value.toVariant().toString());
    }
    return members;
}

bool isDarkSkin()
{
    const NHelioApplication* application = NHelioApplication::instance();
    const NHelioSkin* skin = application ? application->helioSkin() : nullptr;
    return skin && skin->isDark();
}

bool isWebUrl(const QString& text)
{
    const QUrl url(text, QUrl::StrictMode);
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == QLatin1String("https") || url.scheme() == QLatin1String("http"));
}

} // namespace

NHelioCommonJSAPI::NHelioCommonJSAPI(NxWebViewContainer* container, QObject* parent)
    : NxWebViewAsynJSObject(container, parent)
{
    if (auto* shell = qobject_cast<ShellApplication*>(NHelioApplication::instance()))
        shell->serveScriptObject(*this);
}

void NHelioCommonJSAPI::login(NxWebViewJSContext& context)
{
    if (!isSignalConnected(QMetaMethod::fromSignal(&NHelioCommonJSAPI::loginRequested)))
        return scriptreply::fail(context, QStringLiteral("nobody can sign in"));
    Q_EMIT loginRequested();
    scriptreply::succeed(context);
}

void NHelioCommonJSAPI::logout(NxWebViewJSContext& context)
{
    if (!isSignalConnected(QMetaMethod::fromSignal(&NHelioCommonJSAPI::logoutRequested)))
        return scriptreply::fail(context, QStringLiteral("nobody can sign out"));
    Q_EMIT logoutRequested();
    scriptreply::succeed(context);
}

void NHelioCommonJSAPI::openUrlTava(NxWebViewJSContext& context)
{
    const QString url = context.getValue(QStringLiteral("url")).toString();
    if (!isWebUrl(url))
        return scriptreply::fail(context, QStringLiteral("not a web address: \"%1\"").arg(url));
    Q_EMIT openUrlRequested(url);
    scriptreply::succeed(context);
}

bool NHelioCommonJSAPI::reportFromScript(const QString& name, const QJsonObject& data)
{
    if (name == QLatin1String("webFileReady"))
        Q_EMIT sig_webFileReady(textMembers(data));
    else if (name == QLatin1String("shareDlgReady"))
        Q_EMIT sig_shareDlgReady(textMembers(data));
    else if (name == QLatin1String("menuItemDataReady"))
        Q_EMIT sig_menuItemDataReady(data);
    else if (name == QLatin1String("unsavedChanges"))
        Q_EMIT sig_unsavedChanges(data.value(QLatin1String("unsaved")).toBool());
    else
        return false;
    return true;
}

void NHelioCommonJSAPI::getCurSkin(NxWebViewJSContext& context)
{
    scriptreply::succeed(context, isDarkSkin() ? QStringLiteral("dark") : QStringLiteral("light"));
}

void NHelioCommonJSAPI::getSkinIcon(NxWebViewJSContext& context)
{
    const QString name = context.getValue(QStringLiteral("name")).toString();
    const QByteArray svg = ShellLook::iconSvg(name, isDarkSkin());
    if (svg.isEmpty())
        return scriptreply::fail(context, QStringLiteral("no icon \"%1\"").arg(name));
    scriptreply::succeed(context,
                         QStringLiteral("data:image/svg+xml;base64,") + QString::fromLatin1(svg.toBase64()));
}

void NHelioCommonJSAPI::onNotifyNameChange(const QString& name)
{
    if (NxJSApiEventHandler* events = eventHandler())
        events->raiseEvent(QStringLiteral("namechange"),
                           JsonHelper::convertQJsonToString({{QStringLiteral("name"), name}}));
}
