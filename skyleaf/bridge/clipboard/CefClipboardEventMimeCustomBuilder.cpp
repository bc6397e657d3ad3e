#include "bridge/clipboard/CefClipboardEventMimeCustomBuilder.h"

#include "bridge/clipboard/CustomMimeFormat.h"

#include "zeolite/NxLoggerLite.h"

#include <new>

void CefClipboardEventMimeCustomBuilder::insert(const QString& type, const QVariant& value)
{
    m_values.insert(type, value);
}

QByteArray CefClipboardEventMimeCustomBuilder::build() const
{
    try {
        return custommime::build(m_values);
    } catch (const std::bad_alloc&) {
        NxLoggerLite::writeError(QStringLiteral("CefClipboardEventMimeCustomBuilder"),
                                 QStringLiteral("getMimeByteArray throw bad_alloc"));
        return {};
    }
}
