#include "vltcloudsvr/common/InstalledPlugins.h"

#include "nrt/files.h"

#include <QDir>
#include <QRegularExpression>
#include <QVersionNumber>

#include <algorithm>

namespace vlt::cloudsvr {
namespace {

constexpr qint64 longestVersionFile = 4096;

QStringList visibleDirectories(const QString& path)
{
    return QDir(path).entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks);
}

} // namespace

bool isInstallableName(const QString& text)
{
    static const QRegularExpression form(QStringLiteral("\\A[0-9A-Za-z][0-9A-Za-z._+-]{0,63}\\z"));
    return form.match(text).hasMatch();
}

bool isOlderVersion(const QString& version, const QString& than)
{
    const int order = QVersionNumber::compare(QVersionNumber::fromString(version).normalized(),
                                              QVersionNumber::fromString(than).normalized());
    return order != 0 ? order < 0 : version < than;
}

QString versionIn(const QString& directory)
{
    if (directory.isEmpty())
        return {};
    const QString path = directory + QStringLiteral("/version");
    return QString::fromUtf8(nrt::files::read(path, longestVersionFile).bytes).trimmed();
}

QVector<InstalledVersion> installedVersions(const QString& pluginsDir, const QString& name)
{
    QVector<InstalledVersion> versions;
    if (!isInstallableName(name))
        return versions;
    const QString plugin = pluginsDir + u'/' + name;
    for (const QString& version : visibleDirectories(plugin)) {
        const QString directory = plugin + u'/' + version;
        if (isInstallableName(version) && versionIn(directory) == version)
            versions.append({version, directory});
    }
    std::sort(versions.begin(), versions.end(), [](const InstalledVersion& a, const InstalledVersion& b) {
        return isOlderVersion(b.version, a.version);
    });
    return versions;
}

QMap<QString, InstalledVersion> newestInstalled(const QString& pluginsDir)
{
    QMap<QString, InstalledVersion> newest;
    for (const QString& name : visibleDirectories(pluginsDir)) {
        const QVector<InstalledVersion> versions = installedVersions(pluginsDir, name);
        if (!versions.isEmpty())
            newest.insert(name, versions.constFirst());
    }
    return newest;
}

} // namespace vlt::cloudsvr
