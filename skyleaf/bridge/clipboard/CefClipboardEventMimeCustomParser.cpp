#include "bridge/clipboard/CefClipboardEventMimeCustomParser.h"

#include "bridge/clipboard/CustomMimeFormat.h"

CefClipboardEventMimeCustomParser::CefClipboardEventMimeCustomParser(const QByteArray& bytes)
    : m_bytes(bytes)
{
}

QPair<QVariantMap, bool> CefClipboardEventMimeCustomParser::parse() const
{
    const std::optional<QVariantMap> values = custommime::parse(m_bytes);
    return {values.value_or(QVariantMap()), values.has_value()};
}
