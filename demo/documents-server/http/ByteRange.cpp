#include "http/ByteRange.h"

#include <algorithm>
#include <limits>

namespace documents {
namespace {

/** Nothing unless the text is all digits; a number beyond all sizes is the largest. */
std::optional<qint64> parsePosition(const QByteArray& text)
{
    constexpr int longest = 18;
    const bool isDigits =
        !text.isEmpty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!isDigits)
        return std::nullopt;
    return text.size() > longest ? std::numeric_limits<qint64>::max() : text.toLongLong();
}

} // namespace

RangeWish parseRange(const QByteArray& field, qint64 size)
{
    const QByteArray unit = "bytes=";
    const QByteArray text = field.trimmed();
    const auto dash = text.indexOf('-');
    if (!text.startsWith(unit) || dash < 0 || text.contains(','))
        return {};
    const QByteArray before = text.mid(unit.size(), dash - unit.size()).trimmed();
    const QByteArray after = text.mid(dash + 1).trimmed();
    const auto first = parsePosition(before);
    const auto last = parsePosition(after);

    if (before.isEmpty() && last) {
        const qint64 length = std::min(*last, size);
        return length == 0 ? RangeWish{RangeKind::Unsatisfiable}
                           : RangeWish{RangeKind::Part, {size - length, length}};
    }
    if (!first || (!last && !after.isEmpty()) || (last && *last < *first))
        return {};
    if (*first >= size)
        return {RangeKind::Unsatisfiable};
    const qint64 end = last ? std::min(*last, size - 1) : size - 1;
    return {RangeKind::Part, {*first, end - *first + 1}};
}

} // namespace documents
