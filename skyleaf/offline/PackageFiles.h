#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/** Reading the files of local packages. Any thread. */
namespace npackagefiles {

/** The bytes of a file; nothing when it cannot be opened or read to its end. */
std::optional<QByteArray> readWhole(const QString& path);
/**
 * Whether the path names a regular file that lies in the directory or below it once all symbolic links are
 * followed. What a package or a URL names must not lead out of the package.
 */
bool isFileWithin(const QString& directory, const QString& path);
/**
 * Whether a file at the path, which need not exist, would lie in the directory or below it once all symbolic
 * links are followed.
 */
bool isPlaceWithin(const QString& directory, const QString& path);
/** Whether a URL or path holds a step to a parent directory, percent-encoded ones included. */
bool hasParentStep(const QString& text);

} // namespace npackagefiles
