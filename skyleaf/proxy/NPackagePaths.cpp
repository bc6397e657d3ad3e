#include "proxy/NPackagePaths.h"

#include "base/NReadOnce.h"
#include "nrt/files.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NPlugin.h"

#include <QDir>
#include <QHash>

#include <memory>

namespace npackagepaths {
namespace {

QHash<QString, QString>& knownVersions()
{
    static NReadOnce<std::shared_ptr<QHash<QString, QString>>> versions(
        [] { return std::make_shared<QHash<QString, QString>>(); });
    return *versions();
}

} // namespace

QString readPluginVersion(const QString& directory)
{
    constexpr qint64 longestVersion = 4096;
    const QString known = knownVersions().value(directory);
    if (!known.isEmpty() || directory.isEmpty())
        return known;
    const QString path = QDir(directory).filePath(QStringLiteral("version"));
    const QString version = QString::fromUtf8(nrt::files::read(path, longestVersion).bytes).trimmed();
    if (!version.isEmpty())
        knownVersions().insert(directory, version);
    return version;
}

QString upgradedOrInstalled(const QString& pluginName)
{
    NCoreApplication* core = NCoreApplication::instance();
    NPluginManager* plugins = core ? core->getPluginManager() : nullptr;
    NPluginUpgradeManager* upgrades = plugins ? plugins->getPluginUpgradeManager() : nullptr;
    if (pluginName.isEmpty() || !upgrades)
        return {};
    QString path;
    const NPluginPtr upgraded = upgrades->getPlugin(pluginName);
    if (upgraded && upgraded->load() == NPlugin::Loaded)
        path = upgraded->localPath();
    return path.isEmpty() ? plugins->getPluginPath(pluginName) : path;
}

} // namespace npackagepaths
