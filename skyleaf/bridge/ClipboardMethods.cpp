#include "bridge/NHelioCloudDocsAsynJsObj.h"
#include "bridge/clipboard/ClipboardContents.h"
#include "bridge/clipboard/ClipboardImages.h"
#include "bridge/clipboard/SystemClipboard.h"

#include "zeolite/NxWebViewJSContext.h"

#include <QMimeData>

#include <functional>
#include <memory>

// The script methods that move contents between the page and the system clipboard. Pictures that take a while
// are decoded and encoded on another thread; the reply then comes later.

namespace {

using Rest = ClipboardCalls::Rest;

Rest read(NxWebViewJSContext& call)
{
    const QMimeData* const content = systemclipboard::content();
    const auto source = content ? clipboardimages::sourceOf(*content) : clipboardimages::Source();
    Json::Value result = clipboardcontents::toReply(content);
    if (source.isEmpty() || source.isSmall()) {
        clipboardcontents::addPicture(result,
                                      source.isEmpty() ? QByteArray() : clipboardimages::toPng(source));
        call.reply()["result"] = result;
        return {};
    }
    const auto png = std::make_shared<QByteArray>();
    return {[png, source] { *png = clipboardimages::toPng(source); },
            [png, result](NxWebViewJSContext& later) {
                later.reply()["result"] = result;
                clipboardcontents::addPicture(later.reply()["result"], *png);
            }};
}

void place(NxWebViewJSContext& call, std::unique_ptr<QMimeData> content, const QImage& picture)
{
    if (!picture.isNull())
        content->setImageData(picture);
    systemclipboard::replace(std::move(content));
    call.setDefaultPublishResult(true);
}

Rest set(NxWebViewJSContext& call, const QVariantMap& arguments)
{
    clipboardcontents::Placed placed = clipboardcontents::fromArguments(arguments);
    if (clipboardimages::areSmall(placed.pictures)) {
        place(call, std::move(placed.content), clipboardimages::lastOf(placed.pictures));
        return {};
    }
    const auto picture = std::make_shared<QImage>();
    // Shared, since a function is copied; given away when it is placed.
    const auto content = std::make_shared<std::unique_ptr<QMimeData>>(std::move(placed.content));
    return {[picture, files = placed.pictures] { *picture = clipboardimages::lastOf(files); },
            [picture, content](NxWebViewJSContext& later) { place(later, std::move(*content), *picture); }};
}

} // namespace

void NHelioCloudDocsAsynJsObj::getClipboardData(NxWebViewJSContext& context)
{
    m_clipboardCalls.take(context, read);
}

void NHelioCloudDocsAsynJsObj::setClipboardData(NxWebViewJSContext& context)
{
    m_clipboardCalls.take(context, [arguments = parseContextArgs(context, true)](NxWebViewJSContext& call) {
        return set(call, arguments);
    });
}

void NHelioCloudDocsAsynJsObj::readClipboard(NxWebViewJSContext& context)
{
    m_clipboardCalls.take(context, [](NxWebViewJSContext& call) {
        call.reply() = clipboardcontents::toSimpleReply(systemclipboard::content());
        return Rest();
    });
}

void NHelioCloudDocsAsynJsObj::writeClipboard(NxWebViewJSContext& context)
{
    m_clipboardCalls.take(context, [](NxWebViewJSContext& call) {
        const QVariantMap data = call.getMap(QStringLiteral("data"));
        if (std::unique_ptr<QMimeData> content = clipboardcontents::fromSimpleData(data))
            systemclipboard::replace(std::move(content));
        call.reply()["result"] = "ok";
        return Rest();
    });
}
