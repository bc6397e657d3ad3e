#pragma once

#include <optional>

#include <QString>

namespace documents {

/** 1 to 255 bytes of UTF-8 without "/" and control characters, and neither "." nor "..". */
bool isDriveName(const QString& name);

/** The number that one to eighteen decimal digits stand for; nothing for any other text. */
std::optional<qint64> driveId(const QString& text);

/** 40 lower-case hexadecimal digits. */
bool isSha1(const QString& text);

} // namespace documents
