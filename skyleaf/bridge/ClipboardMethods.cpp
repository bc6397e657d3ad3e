#include "bridge/NHelioCloudDocsAsynJsObj.h"
#include "bridge/clipboard/ClipboardContents.h"
#include "bridge/clipboard/SystemClipboard.h"

#include "zeolite/NxWebViewJSContext.h"

#include <QMimeData>

// The script methods that move contents between the page and the system clipboard.

void NHelioCloudDocsAsynJsObj::getClipboardData(NxWebViewJSContext& context)
{
    context.reply()["result"] = clipboardcontents::toReply(systemclipboard::content());
}

void NHelioCloudDocsAsynJsObj::setClipboardData(NxWebViewJSContext& context)
{
    systemclipboard::replace(clipboardcontents::fromArguments(parseContextArgs(context, true)));
    context.setDefaultPublishResult(true);
}

void NHelioCloudDocsAsynJsObj::readClipboard(NxWebViewJSContext& context)
{
    context.reply() = clipboardcontents::toSimpleReply(systemclipboard::content());
}

void NHelioCloudDocsAsynJsObj::writeClipboard(NxWebViewJSContext& context)
{
    const QVariantMap data = context.getMap(QStringLiteral("data"));
    if (std::unique_ptr<QMimeData> content = clipboardcontents::fromSimpleData(data))
        systemclipboard::replace(std::move(content));
    context.reply()["result"] = "ok";
}
