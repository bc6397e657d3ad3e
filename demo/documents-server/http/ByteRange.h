#pragma once

#include <optional>

#include <QByteArray>

namespace documents {

/** Bytes of a resource; never empty. */
struct ByteRange
{
    qint64 first = 0;
    qint64 length = 0;
};

enum class RangeKind {
    Whole,        ///< none asked for, several at once, or nothing that can be understood: all is sent
    Part,         ///< `range` is what was asked for
    Unsatisfiable ///< nothing of the resource
};

struct RangeWish
{
    RangeKind kind = RangeKind::Whole;
    ByteRange range = {};
};

/** Reads a "Range" field ("bytes=0-99", "bytes=100-", "bytes=-100") for a resource of that size. */
RangeWish parseRange(const QByteArray& field, qint64 size);

} // namespace documents
