#pragma once

#include <QString>

/** Where front-end packages lie. User-interface thread. */
namespace npackagepaths {

/**
 * The version of the package in a directory: the trimmed text of its file "version", kept once it was read;
 * empty without one.
 */
QString readPluginVersion(const QString& directory);

/** The directory of the plug-in as it was upgraded, else as it was installed; empty when it is not there. */
QString upgradedOrInstalled(const QString& pluginName);

} // namespace npackagepaths
