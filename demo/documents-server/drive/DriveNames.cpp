#include "drive/DriveNames.h"

#include <algorithm>

#include "store/Document.h"

namespace documents {

bool isDriveName(const QString& name)
{
    constexpr int longest = 255;
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String("..") || !name.isValidUtf16() ||
        name.toUtf8().size() > longest)
        return false;
    return std::all_of(name.begin(), name.end(),
                       [](QChar c) { return c != u'/' && c.category() != QChar::Other_Control; });
}

std::optional<qint64> driveId(const QString& text)
{
    return isDocumentId(text) ? std::optional<qint64>(text.toLongLong()) : std::nullopt;
}

bool isSha1(const QString& text)
{
    constexpr int length = 40;
    return text.size() == length && std::all_of(text.begin(), text.end(), [](QChar c) {
               return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f');
           });
}

} // namespace documents
