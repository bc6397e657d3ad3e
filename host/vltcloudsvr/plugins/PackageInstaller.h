#pragma once

#include "vltcloudsvr/archive/EntryRules.h"
#include "vltcloudsvr/common/InstalledPlugins.h"
#include "vltcloudsvr/common/Result.h"

#include <QDateTime>

#include <atomic>

/** The writing side of the downloaded plug-ins; "common/InstalledPlugins.h" says how they lie. */
namespace vlt::cloudsvr {

/**
 * Unpacks a package beside the versions that are there and makes it visible, complete and on the disk, in one
 * step. It must hold the version that it is said to be. The result is the version's directory. Any thread.
 */
Result<QString> installPackage(const QString& zipFile, const QString& pluginsDir, const QString& name,
                               const QString& version, const std::atomic<bool>& isCancelled);

/**
 * Removes old versions until three are left. The newest and `kept` stay, and one that came within the last
 * day as long as there are not more than six, since it may be in use.
 */
void pruneVersions(const QString& pluginsDir, const QString& name, const QString& kept, const QDateTime& now);

/** A file to download a package into; its directory is made. */
QString incomingFile(const QString& pluginsDir, const QString& name);

/** Removes what downloads and installations that were cut off left behind. Nothing else may be running. */
void clearLeftovers(const QString& pluginsDir);

} // namespace vlt::cloudsvr
