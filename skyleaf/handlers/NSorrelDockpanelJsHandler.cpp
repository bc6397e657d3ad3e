#include "handlers/NSorrelDockpanelJsHandler.h"

namespace {

void replyNotServed(NxWebViewJSContext& context)
{
    context.reply()["success"] = false;
    context.reply()["errorMsg"] =
        QStringLiteral("%1 is not available yet").arg(context.method()).toStdString();
}

} // namespace

void NSorrelDockpanelJsHandler::notifyDockPanelSorrelMsg(NxWebViewJSContext& context)
{
    replyNotServed(context);
}

void NSorrelDockpanelJsHandler::isDockPanelEntryVisible(NxWebViewJSContext& context)
{
    replyNotServed(context);
}

void NSorrelDockpanelJsHandler::generateTaskId(NxWebViewJSContext& context)
{
    replyNotServed(context);
}
