#pragma once

#include "zeolite/NPlugin.h"
#include "zeolite/ZeoliteSetup.h"

#include <QMap>

class DirectoryPlugin;

/** The plug-ins of the installation and their upgrades, by name. User-interface thread. */
class PluginStore final : public NPluginManager
{
public:
    explicit PluginStore(const QMap<QString, zeolite::PluginDirectories>& directories);

    NPluginPtr getPlugin(const QString& name) override;
    QString getPluginPath(const QString& name, bool checkExists = true) override;
    NPluginUpgradeManager* getPluginUpgradeManager() override;

    /** Takes in what became of the directories of the plug-in; a plug-in that was loaded is loaded again. */
    void rescan(const QString& name);
    /**
     * The plug-in's upgrade lies there from now on; an empty path says that it has none. A complete upgrade
     * takes the place of what was installed, also for a plug-in that never was.
     */
    void setUpgradePath(const QString& name, const QString& path);

private:
    using Plugins = QMap<QString, std::shared_ptr<DirectoryPlugin>>;

    void useUpgrade(const QString& name, const QString& path);

    class Upgrades final : public NPluginUpgradeManager
    {
    public:
        NPluginPtr getPlugin(const QString& name) override;
        Plugins plugins;
    };

    QMap<QString, QString> m_installed; //!< directories by name
    Plugins m_plugins;
    Upgrades m_upgrades;
};
