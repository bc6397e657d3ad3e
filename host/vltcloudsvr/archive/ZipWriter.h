#pragma once

#include "vltcloudsvr/archive/EntryRules.h"

namespace vlt::cloudsvr {

/**
 * Packs what is in a directory, empty directories too, or one file. The zip file replaces an older one when
 * it is complete, and is not packed into itself. A symbolic link or a special file in the directory is an
 * error. Empty, or the error.
 */
QString writeZip(const QString& source, const QString& zipFile, const ArchiveLimits& limits);

} // namespace vlt::cloudsvr
