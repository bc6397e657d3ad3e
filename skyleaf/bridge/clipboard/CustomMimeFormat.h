#pragma once

#include <QByteArray>
#include <QVariantMap>

#include <optional>

/**
 * The browser's custom data format: a size, a count and pairs of a MIME type and a text, every number 32 bits
 * unsigned little-endian, every text UTF-16LE behind its length in code units and padded to a multiple of 4
 * bytes.
 */
namespace custommime {

/** The name under which the format lies on the clipboard. */
extern const char* const formatName;

/**
 * The pairs in the order of the map; texts are trimmed, a map becomes compact JSON, a pair with an empty type
 * or text is left out. Empty bytes when there is no encoder for UTF-16. Raises std::bad_alloc when memory
 * runs out or the format would be too long for a byte array.
 */
QByteArray build(const QVariantMap& values);

/** Type to text; nothing when the bytes end before the last pair does. The leading size is not looked at. */
std::optional<QVariantMap> parse(const QByteArray& bytes);

} // namespace custommime
