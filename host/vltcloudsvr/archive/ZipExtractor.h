#pragma once

#include "vltcloudsvr/archive/EntryRules.h"

#include <atomic>

namespace vlt::cloudsvr {

/**
 * Unpacks a zip file into a directory that is made for it and must not exist. All entries are looked at
 * before anything is written; an archive with an entry that must not be unpacked is refused as a whole. A
 * failure leaves no directory behind. Empty, or the error. Setting `isCancelled` ends it with an error.
 */
QString extractZip(const QString& zipFile, const QString& directory, const ArchiveLimits& limits,
                   const std::atomic<bool>& isCancelled);

} // namespace vlt::cloudsvr
