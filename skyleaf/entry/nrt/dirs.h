#pragma once

#include <QString>

/** Directories of the user and of the installation; absolute, without trailing separator. */
namespace nrt::dirs {

/** The maker's directory in the user's home. Not necessarily existing. */
QString maravelHome();
/** The resource directory of a module of the installation. */
QString resourceDir(const QString& module);
QString officeInstallRoot();
QString frameworksDir();
/** True when downloads must not be written to `path`: the installation itself and directories of the system.
 */
bool inBlackDownloadDir(const QString& path);

} // namespace nrt::dirs
