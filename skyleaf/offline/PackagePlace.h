#pragma once

#include <QString>

#include <optional>

/** Where the web application's relative positions lie in a local storage package. Any thread. */
namespace npackageplace {

/** The package root with the symbolic links that lead to it resolved; the root may be missing. */
QString resolvedRoot(const QString& root);

/**
 * The path of a position below `root`: the root itself for a position without a name in it, and a leading
 * separator changes nothing. None for a position that could lead elsewhere: with a step to a parent
 * directory, with a NUL, too long for a path, or over a symbolic link, wherever that leads.
 */
std::optional<QString> pathOf(const QString& root, const QString& relativePos);

} // namespace npackageplace
