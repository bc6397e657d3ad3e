#pragma once

#include <QMap>
#include <QString>
#include <QVector>

/** Downloaded plug-ins: "<plugins>/<name>/<version>/", complete when its file "version" says the same
 * version. */
namespace vlt::cloudsvr {

struct InstalledVersion
{
    QString version;
    QString directory;
};

/** Whether the text can name a plug-in or a version, and so a directory. */
bool isInstallableName(const QString& text);

/** Whether the first version is older. Versions are compared by their numbers, then as texts. */
bool isOlderVersion(const QString& version, const QString& than);

/** What the file "version" of a plug-in's directory says; empty when there is none. */
QString versionIn(const QString& directory);

/** The complete versions of a plug-in, newest first. */
QVector<InstalledVersion> installedVersions(const QString& pluginsDir, const QString& name);

/** The newest complete version of every plug-in, by its name. */
QMap<QString, InstalledVersion> newestInstalled(const QString& pluginsDir);

} // namespace vlt::cloudsvr
