#include "handlers/NSorrelDockpanelJsHandler.h"

#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioMainWindow.h"
#include "zeolite/JsonHelper.h"
#include "zeolite/NxLoggerLite.h"

#include <QJsonObject>
#include <QUuid>

namespace {

const QString panelId = QStringLiteral("dockpanel_sorrel");

NHelioMainWindow* windowOf(const QObject* object)
{
    const NHelioApplication* application = NHelioApplication::instance();
    return application ? application->findRelativeHelioMainWindow(object) : nullptr;
}

void logMessage(const QVariantMap& arguments)
{
    constexpr int line = 43;
    const QString message = JsonHelper::convertQJsonToString(QJsonObject::fromVariantMap(arguments));
    NxLoggerLite::writeInfo(QStringLiteral("skyleaf"),
                            QStringLiteral("%1>%2@%3: %4")
                                .arg(QStringLiteral("__sorrel_dockpanel__"),
                                     QStringLiteral("NSorrelDockpanelJsHandler::notifyDockPanelSorrelMsg"),
                                     QString::number(line),
                                     QStringLiteral("from frontend msg: %1").arg(message)));
}

} // namespace

void NSorrelDockpanelJsHandler::notifyDockPanelSorrelMsg(NxWebViewJSContext& context)
{
    const NHelioMainWindow* window = windowOf(this);
    if (!window)
        return;
    const QVariantMap arguments = parseContextArgs(context, true);
    if (arguments.isEmpty())
        return;
    logMessage(arguments);
    NHelioDockPanelUtility* panels = window->getDockPanelUtility();
    if (!panels)
        return;
    const QString event = QStringLiteral("dockPanelNotification");
    const QJsonObject message{{QStringLiteral("data"),
                               QJsonObject::fromVariantMap(arguments.value(QStringLiteral("data")).toMap())},
                              {QStringLiteral("receiverId"), panelId},
                              {QStringLiteral("docSource"), QStringLiteral("online")}};
    const bool taken = panels->notifyDockMessage(
        panels->getDefaultDockContainerId(), event, JsonHelper::convertQJsonToString(message),
        arguments.value(QStringLiteral("source")).toString(), nullptr);
    context.reply()["success"] = taken;
    if (!taken)
        context.reply()["errorMsg"] = event.toStdString();
}

void NSorrelDockpanelJsHandler::isDockPanelEntryVisible(NxWebViewJSContext& context)
{
    const NHelioMainWindow* window = windowOf(this);
    const NHelioDockPanelUtility* panels = window ? window->getDockPanelUtility() : nullptr;
    context.reply()["result"] = panels && panels->isDockPanelEntryVisible(panelId);
    context.reply()["success"] = true;
}

void NSorrelDockpanelJsHandler::generateTaskId(NxWebViewJSContext& context)
{
    context.reply()["task_id"] =
        QStringLiteral("onlinefront_%1").arg(QUuid::createUuid().toString()).toStdString();
    context.reply()["success"] = true;
}
