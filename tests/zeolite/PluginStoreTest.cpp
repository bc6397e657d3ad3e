#include "zeolite/plugins/PluginStore.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

#include "support/OddFiles.h"

namespace {

class Plugins : public testing::Test
{
protected:
    QString package(const QString& folder, const QByteArray& version) const
    {
        QString path = directory.filePath(folder);
        QDir().mkpath(path);
        QFile file(path + QStringLiteral("/version"));
        file.open(QIODevice::WriteOnly);
        file.write(version);
        return path;
    }

    const QTemporaryDir directory;
    const QString name = QStringLiteral("quillword");
};

TEST_F(Plugins, LoadOnlyWhenComplete)
{
    QDir(directory.path()).mkpath(QStringLiteral("noVersion"));
    QMap<QString, zeolite::PluginDirectories> directories = {
        {QStringLiteral("good"), {package(QStringLiteral("good"), " 1.2.3\n"), {}}},
        {QStringLiteral("blank"), {package(QStringLiteral("blank"), "\n"), {}}},
        {QStringLiteral("noVersion"), {directory.filePath(QStringLiteral("noVersion")), {}}},
        {QStringLiteral("absent"), {directory.filePath(QStringLiteral("absent")), {}}}};
    for (const OddFile& odd : oddFiles) {
        const QString folder = package(QLatin1String(odd.name), "1.2.3");
        ASSERT_TRUE(putOddFile(odd, folder + QStringLiteral("/version")));
        directories.insert(QLatin1String(odd.name), {folder, {}});
    }
    PluginStore store(directories);
    for (const QString& each : directories.keys()) {
        const bool good = each == QLatin1String("good");
        const NPluginPtr plugin = store.getPlugin(each);
        ASSERT_TRUE(plugin);
        EXPECT_EQ(NPlugin::convertState(plugin->state()), QStringLiteral("not loaded"));
        EXPECT_TRUE(plugin->localPath().isEmpty());
        QSignalSpy succeeded(plugin.get(), &NPlugin::loadSuccess);
        QSignalSpy failed(plugin.get(), &NPlugin::loadFailed);
        EXPECT_EQ(plugin->load(), good ? 3 : 2) << qPrintable(each);
        EXPECT_EQ(succeeded.size() + failed.size(), 0) << "reported later";
        QCoreApplication::processEvents();
        EXPECT_EQ(succeeded.size(), good ? 1 : 0);
        EXPECT_EQ(failed.size(), good ? 0 : 1);
        EXPECT_EQ(plugin->getProp(QStringLiteral("version")),
                  good ? QVariant(QStringLiteral("1.2.3")) : QVariant());
        EXPECT_EQ(plugin->localPath(), good ? directory.filePath(each) : QString());
    }
    EXPECT_EQ(store.getPlugin(QStringLiteral("unknown")), nullptr);
    EXPECT_TRUE(store.getPluginPath(QStringLiteral("absent")).isEmpty());
    EXPECT_EQ(store.getPluginPath(QStringLiteral("absent"), false),
              directory.filePath(QStringLiteral("absent")));
}

TEST_F(Plugins, TakeInUpgradesAtRunTime)
{
    const QString later = directory.filePath(QStringLiteral("later"));
    PluginStore store({{name, {package(QStringLiteral("base"), "1"), {}}}});
    NPluginUpgradeManager* const upgrades = store.getPluginUpgradeManager();
    EXPECT_EQ(upgrades->getPlugin(name), nullptr);

    store.setUpgradePath(name, later);
    const NPluginPtr upgrade = upgrades->getPlugin(name);
    ASSERT_TRUE(upgrade);
    EXPECT_EQ(upgrade->load(), 2);
    QCoreApplication::processEvents();
    QSignalSpy succeeded(upgrade.get(), &NPlugin::loadSuccess);
    package(QStringLiteral("later"), "2");
    store.rescan(name);
    QCoreApplication::processEvents();
    EXPECT_EQ(succeeded.size(), 1);
    EXPECT_EQ(upgrade->getProp(QStringLiteral("version")).toString(), QStringLiteral("2"));

    store.setUpgradePath(name, package(QStringLiteral("newest"), "3"));
    EXPECT_EQ(upgrade->localPath(), directory.filePath(QStringLiteral("newest")));
    EXPECT_EQ(store.getPlugin(name)->state(), NPlugin::NotLoaded) << "rescanning loads nothing of itself";
}

TEST_F(Plugins, ACompleteUpgradeTakesThePlaceOfWhatWasInstalled)
{
    const QString base = package(QStringLiteral("base"), "1");
    const QString missing = directory.filePath(QStringLiteral("missing"));
    PluginStore store({{name, {base, missing}}});
    EXPECT_EQ(store.getPluginPath(name), base) << "not while it is not there";
    const NPluginPtr plugin = store.getPlugin(name);
    plugin->load();
    QSignalSpy succeeded(plugin.get(), &NPlugin::loadSuccess);
    store.setUpgradePath(name, package(QStringLiteral("new"), "2"));
    plugin->load();
    EXPECT_EQ(plugin->getProp(QStringLiteral("version")).toString(), QStringLiteral("2"));
    QCoreApplication::processEvents();
    EXPECT_EQ(succeeded.size(), 2) << "the first load and the upgrade, not the load of what is loaded";
    store.setUpgradePath(name, {});
    EXPECT_EQ(store.getPluginPath(name), base);

    const QString other = QStringLiteral("other");
    EXPECT_EQ(store.getPlugin(other), nullptr);
    store.setUpgradePath(other, package(QStringLiteral("other"), "1"));
    EXPECT_EQ(store.getPlugin(other)->load(), 3) << "a plug-in that never was installed";
}

} // namespace
