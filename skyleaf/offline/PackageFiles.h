#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/** Reading the files of local packages. Any thread. */
namespace npackagefiles {

// The largest files that are read, in bytes. What is larger is left to the documents server.
constexpr qint64 largestPage = 8LL << 20;
constexpr qint64 largestScript = 64LL << 20;
constexpr qint64 largestList = 1LL << 20;

/**
 * The bytes of a regular file that lies in the directory or below it once all symbolic links are followed.
 * Nothing for others and for one that cannot be read; why, the log says, unless it is just not there.
 */
std::optional<QByteArray> readWithin(const QString& directory, const QString& path, qint64 largest);
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
