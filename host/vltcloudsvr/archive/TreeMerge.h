#pragma once

#include <QString>

namespace vlt::cloudsvr {

/**
 * Moves a directory to a place on the same file system. Where there is a directory already, the contents are
 * merged: files replace files of the same name. Nothing is moved when a file would replace a directory or the
 * other way round, or when the place or something in the way is a symbolic link. Empty, or the error.
 */
QString moveInto(const QString& source, const QString& destination);

} // namespace vlt::cloudsvr
