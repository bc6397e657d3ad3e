#include "bridge/clipboard/CefClipboardEventMimeHtmlParser.h"

#include "bridge/clipboard/HtmlFormat.h"
#include "bridge/clipboard/SystemClipboard.h"

#include <exception>

CefClipboardEventMimeHtmlParser::CefClipboardEventMimeHtmlParser()
{
    systemclipboard::registerFormat(QLatin1String(htmlformat::formatName));
}

QPair<QByteArray, bool> CefClipboardEventMimeHtmlParser::parse() const
{
    try {
        if (const std::optional<QByteArray> bytes =
                systemclipboard::read(QLatin1String(htmlformat::formatName)))
            return {htmlformat::cutOfficeDocument(*bytes), true};
    } catch (const std::exception&) {
        // Memory ran out: the format counts as not readable.
    }
    return {{}, false};
}
