#include "shell/CloudServiceLink.h"

#include "nheliostat/framework/ShellCloudSvrProxy.h"
#include "vltcloudsvr/common/Calls.h"
#include "zeolite/ZeoliteHost.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <optional>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

class CloudServiceLinkOf : public testing::Test
{
protected:
    /** Makes a plug-in's directory and answers it. */
    QString make(const QString& path, const char* version)
    {
        QDir(directory.path()).mkpath(path);
        QFile file(directory.filePath(path + s("/version")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(version);
        return directory.filePath(path);
    }
    void start()
    {
        services.emplace(setup);
        proxy.emplace(NHelioUserInfo(), ShellCloudService());
        link.emplace(*proxy, *services, directory.path());
    }
    void installed(const char* plugin, const char* version, const QString& path)
    {
        Q_EMIT proxy->serviceEvent(
            vlt::cloudsvr::names::pluginInstalled,
            {{s("pluginName"), s(plugin)}, {s("version"), s(version)}, {s("path"), path}});
    }
    /** The directory of the upgrade, which is loaded; empty for none. */
    QString upgrade(const char* plugin)
    {
        const NPluginPtr found = services->plugins().getPluginUpgradeManager()->getPlugin(s(plugin));
        return found ? found->localPath() : QString();
    }

    QTemporaryDir directory;
    zeolite::Setup setup;
    std::optional<ZeoliteHost> services;
    std::optional<ShellCloudSvrProxy> proxy;
    std::optional<shell::CloudServiceLink> link;
};

TEST_F(CloudServiceLinkOf, UsesTheNewestOfWhatIsDeployedAndDownloaded)
{
    make(s("plugins/word/1.9"), "1.9");
    const QString newest = make(s("plugins/word/1.10"), "1.10");
    make(s("plugins/word/2.0"), "not complete");
    make(s("plugins/vs/1"), "1");
    const QString never = make(s("plugins/never/3"), "3");
    setup.plugins.insert(s("word"), {make(s("base/word"), "1.2"), {}});
    setup.plugins.insert(s("vs"), {make(s("base/vs"), "1"), make(s("up/vs"), "2")});
    start();
    EXPECT_EQ(upgrade("word"), newest);
    EXPECT_EQ(services->plugins().getPluginUpgradeManager()->getPlugin(s("vs"))->load(), NPlugin::Loaded);
    EXPECT_EQ(upgrade("vs"), directory.filePath(s("up/vs"))) << "a later one was deployed";
    EXPECT_EQ(upgrade("never"), never);

    installed("vs", "1.5", make(s("plugins/vs/1.5"), "1.5"));
    EXPECT_EQ(upgrade("vs"), directory.filePath(s("up/vs")));
    const QString third = make(s("plugins/vs/3"), "3");
    installed("vs", "3", third);
    EXPECT_EQ(upgrade("vs"), third);
    installed("vs", "3", third);
    EXPECT_EQ(upgrade("vs"), third);
}

TEST_F(CloudServiceLinkOf, LetsTheServicesAskForTheProcessAsLongAsItIsThere)
{
    start();
    EXPECT_FALSE(services->getCloudSvrProxy()->checkTavaRunning());
    EXPECT_FALSE(services->getCloudSvrProxy()->startTavaProcess({}, false)) << "there is no program";
    proxy.reset();
    EXPECT_FALSE(services->getCloudSvrProxy()->checkTavaRunning());
    link.reset();
    EXPECT_FALSE(services->getCloudSvrProxy()->startTavaProcess({}, false));
}

} // namespace
