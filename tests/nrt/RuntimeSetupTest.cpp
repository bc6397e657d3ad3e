#include <gmock/gmock.h>

#include <QDir>
#include <QFile>
#include <QLibrary>
#include <QTemporaryDir>

#include "nrt/NrtHost.h"
#include "nrt/dirs.h"
#include "nrt/modules.h"
#include "nrt/product.h"

namespace {

nrt::host::Setup setupIn(const QTemporaryDir& directory)
{
    nrt::host::Setup setup;
    setup.dataDir = directory.filePath(QStringLiteral("data"));
    setup.installRoot = directory.filePath(QStringLiteral("install/"));
    return setup;
}

TEST(RuntimeSetup, AnswersSwitchesFeaturesAndValues)
{
    const QTemporaryDir directory;
    nrt::host::Setup setup = setupIn(directory);
    setup.productSwitches.insert(QStringLiteral("off"), false);
    setup.features.insert(QStringLiteral("CooperationSyncAssist/force"), true);
    setup.productConfig.insert(QStringLiteral("Name/value"), QStringLiteral("office"));
    setup.hiddenEntries.insert(QStringLiteral("skyleaf/docoffline"));
    nrt::host::configure(setup);

    EXPECT_FALSE(nrt::product::getFuncSwitchState(QStringLiteral("off"), true));
    EXPECT_TRUE(nrt::product::getFuncSwitchState(QStringLiteral("unknown"), true));
    EXPECT_TRUE(nrt::kcmc::boolValue(QStringLiteral("CooperationSyncAssist"), QStringLiteral("force")));
    EXPECT_FALSE(nrt::kcmc::support(QStringLiteral("CooperationSyncAssist")));
    EXPECT_EQ(nrt::product::configValue(QStringLiteral("Name"), QStringLiteral("value")),
              QStringLiteral("office"));
    EXPECT_TRUE(nrt::kentrycontrol::isEntryNeedHide(QStringLiteral("skyleaf/docoffline")));

    nrt::host::setProductSwitch(QStringLiteral("off"), true);
    nrt::host::setFeature(QStringLiteral("IntranetVersion"), true);
    EXPECT_TRUE(nrt::product::getFuncSwitchState(QStringLiteral("off"), false));
    EXPECT_TRUE(nrt::kcmc::support(QStringLiteral("IntranetVersion")));
}

TEST(RuntimeSetup, BarsDownloadsIntoInstallationAndSystem)
{
    const QTemporaryDir directory;
    nrt::host::configure(setupIn(directory));
    const QDir base(directory.path());
    base.mkpath(QStringLiteral("install/lib"));
    base.mkpath(QStringLiteral("data"));
    QFile::link(base.filePath(QStringLiteral("install")), base.filePath(QStringLiteral("data/link")));
    QFile::link(base.filePath(QStringLiteral("install/absent")),
                base.filePath(QStringLiteral("data/dangling")));

    for (const char* barred :
         {"install", "install/lib/new/file", "data/../install/x", "data/link/x", "data/dangling"})
        EXPECT_TRUE(nrt::dirs::inBlackDownloadDir(base.filePath(QLatin1String(barred)))) << barred;
    for (const char* barred : {"/usr/share/x", "/etc", "/data/../etc/passwd", "relative/path", ""})
        EXPECT_TRUE(nrt::dirs::inBlackDownloadDir(QLatin1String(barred))) << barred;
    for (const char* open : {"data/file", "data/new/deep/file", "installation/file", "install/../data/x"})
        EXPECT_FALSE(nrt::dirs::inBlackDownloadDir(base.filePath(QLatin1String(open)))) << open;
}

TEST(RuntimeSetup, LoadsALibraryOnce)
{
    const QTemporaryDir directory;
    nrt::host::Setup setup = setupIn(directory);
    const QFileInfo moduleDirectory(QStringLiteral(MODULE_DIRECTORY));
    setup.libraryDir = moduleDirectory.path();
    nrt::host::configure(setup);

    const auto library = nrt::loadPluginModule(QStringLiteral("nrt_test_module"), moduleDirectory.fileName());
    ASSERT_TRUE(library);
    const auto answer = reinterpret_cast<int (*)()>(library->resolve("sampleAnswer"));
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer(), 42);
    EXPECT_EQ(nrt::loadPluginModule(QStringLiteral("nrt_test_module"), moduleDirectory.fileName()), library);
    EXPECT_EQ(nrt::loadPluginModule(QStringLiteral("absent")), nullptr);
}

} // namespace
