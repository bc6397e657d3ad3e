#pragma once

#include "vltcloudsvr/common/Result.h"

/** The directory of a local package: "<user's local data>/quillfile/<local id>/". */
namespace vlt::cloudsvr {

/** The package's root, whether it is there or not. */
Result<QString> packageRoot(const QString& localDataDir, const QString& localId);

/** Makes the root with its directories "sync" and "cache". Empty, or the error. */
QString makePackage(const QString& root);

/** Removes the tree; a symbolic link in it is removed itself, what it leads to stays. Empty, or the error. */
QString removePackage(const QString& root);

/**
 * The path, cleaned, when it is absolute and the package's root or inside it; an error when it leads outside
 * or through a symbolic link.
 */
Result<QString> confinedPath(const QString& root, const QString& path);

} // namespace vlt::cloudsvr
