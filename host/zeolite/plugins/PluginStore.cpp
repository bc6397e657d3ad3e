#include "zeolite/plugins/PluginStore.h"

#include <QFileInfo>

#include "zeolite/plugins/DirectoryPlugin.h"

PluginStore::PluginStore(const QMap<QString, zeolite::PluginDirectories>& directories)
{
    for (auto plugin = directories.begin(); plugin != directories.end(); ++plugin) {
        m_installed.insert(plugin.key(), plugin->path);
        m_plugins.insert(plugin.key(), std::make_shared<DirectoryPlugin>(plugin.key(), plugin->path));
        setUpgradePath(plugin.key(), plugin->upgradePath);
    }
}

NPluginPtr PluginStore::getPlugin(const QString& name)
{
    return m_plugins.value(name);
}

QString PluginStore::getPluginPath(const QString& name, bool checkExists)
{
    const auto plugin = m_plugins.value(name);
    if (!plugin || (checkExists && !QFileInfo(plugin->directory()).isDir()))
        return {};
    return plugin->directory();
}

NPluginUpgradeManager* PluginStore::getPluginUpgradeManager()
{
    return &m_upgrades;
}

void PluginStore::rescan(const QString& name)
{
    if (const auto upgrade = m_upgrades.plugins.value(name)) {
        useUpgrade(name, upgrade->directory());
        upgrade->rescan();
    }
    if (const auto plugin = m_plugins.value(name))
        plugin->rescan();
}

void PluginStore::setUpgradePath(const QString& name, const QString& path)
{
    useUpgrade(name, path);
    if (path.isEmpty()) {
        m_upgrades.plugins.remove(name);
        return;
    }
    auto& upgrade = m_upgrades.plugins[name];
    if (upgrade)
        upgrade->setDirectory(path);
    else
        upgrade = std::make_shared<DirectoryPlugin>(name, path);
}

void PluginStore::useUpgrade(const QString& name, const QString& path)
{
    const QString directory = DirectoryPlugin::isComplete(path) ? path : m_installed.value(name);
    const auto plugin = m_plugins.value(name);
    if (!plugin && !directory.isEmpty())
        m_plugins.insert(name, std::make_shared<DirectoryPlugin>(name, directory));
    else if (plugin && plugin->directory() != directory)
        plugin->setDirectory(directory);
}

NPluginPtr PluginStore::Upgrades::getPlugin(const QString& name)
{
    return plugins.value(name);
}
