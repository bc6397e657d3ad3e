#include "bridge/clipboard/CefClipboardEventMimeHtmlBuilder.h"

#include "bridge/clipboard/HtmlFormat.h"

QByteArray CefClipboardEventMimeHtmlBuilder::build(const QByteArray& fragment) const
{
    return htmlformat::build(fragment);
}
