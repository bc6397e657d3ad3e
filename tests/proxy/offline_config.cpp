#include "nrt/kcc.h"
#include "proxy/NConfigCentreValues.h"
#include "proxy/NDOPConfig.h"
#include "proxy/NDOPSettings.h"
#include "proxy/NFpcCombCloudMgr.h"
#include "proxy/NFpccombCloudProxy.h"
#include "support/ServicesFixture.h"

#include <QCoreApplication>
#include <QJsonArray>

using NDocsOfflinePage::NDOPConfig;

namespace {

constexpr int accelerateItem = 53613;
constexpr int offlineEditItem = 60708;

class OfflineConfig : public ServicesFixture
{
};

TEST_F(OfflineConfig, ATypeIsOnWhenItAndTheMasterSwitchAre)
{
    start();
    setItem(accelerateItem, R"({"DOPMasterSwitch": true, "wordDOPSwitch": true, "vsDOPSwitch": false})");
    setItem(offlineEditItem, R"({"DOPOfflineEditMasterSwitch": true, "motlDOPSwitch": true})");
    const NDOPConfig& config = NDOPConfig::instance();
    EXPECT_TRUE(config.isDopEnabled(QStringLiteral("w")));
    for (const char* off : {"s", "mo", "x", ""})
        EXPECT_FALSE(config.isDopEnabled(QLatin1String(off))) << off;
    EXPECT_TRUE(config.isOfflineEditEnabled(QStringLiteral("mo")));
    EXPECT_FALSE(config.isOfflineEditEnabled(QStringLiteral("w")));
    EXPECT_TRUE(config.forceProxy());
}

TEST_F(OfflineConfig, ASwitchThatTheCentreNoLongerNamesKeepsItsLastState)
{
    start();
    setItem(accelerateItem, R"({"DOPMasterSwitch": true, "wordDOPSwitch": true, "forceProxy": false})");
    ASSERT_TRUE(NDOPConfig::instance().isDopEnabled(QStringLiteral("w")));
    ASSERT_FALSE(NDOPConfig::instance().forceProxy());

    restart();
    EXPECT_TRUE(NDOPConfig::instance().isDopEnabled(QStringLiteral("w")));
    EXPECT_FALSE(NDOPConfig::instance().forceProxy());
    setItem(accelerateItem, R"({"forceProxy": true, "wordDOPSwitch": "yes"})");
    EXPECT_TRUE(NDOPConfig::instance().forceProxy()) << "asked anew with every call";
}

TEST_F(OfflineConfig, AHiddenEntryTurnsTheMasterSwitchesOff)
{
    runtime.hiddenEntries = {QStringLiteral("skyleaf/docoffline")};
    start();
    setItem(accelerateItem, R"({"DOPMasterSwitch": true, "wordDOPSwitch": true})");
    EXPECT_FALSE(NDocsOfflinePage::isDopMasterSwitchOn());
    EXPECT_FALSE(NDOPConfig::instance().isDopEnabled(QStringLiteral("w")));
    EXPECT_FALSE(NDOPConfig::instance().forceProxy());
}

TEST_F(OfflineConfig, TheTableIsReadAgainWhenTheGroupIsInitialised)
{
    services.delayedGroups = {addOnGroup};
    start();
    nrt::kcc::setValue(nrt::kcc::pluginPerfix() +
                           QStringLiteral("skyleaf/docsOfflinePage/accelerateSwitch/DOPMasterSwitch"),
                       true);
    ASSERT_FALSE(NDOPConfig::instance().isDopEnabled(QStringLiteral("w")));
    setItem(accelerateItem, R"({"wordDOPSwitch": true})");
    setItem(59743, R"({"enabled": true})");
    EXPECT_FALSE(nconfigvalues::isPreloadingOn()) << "not before the group is initialised";
    host->configCentre().finishInit(addOnGroup);
    QCoreApplication::processEvents();
    EXPECT_TRUE(NDOPConfig::instance().isDopEnabled(QStringLiteral("w")));
    EXPECT_TRUE(nconfigvalues::isPreloadingOn());
}

TEST_F(OfflineConfig, HybridUrlsNeedAKnownTypeAndEnvironmentInAnyLetterCase)
{
    start();
    const NDOPConfig& config = NDOPConfig::instance();
    EXPECT_TRUE(config.isHybridUrl(QUrl(QStringLiteral("https://d.test/p/1?officeType=MO&openEnv=Hybrid"))));
    for (const char* url :
         {"https://d.test/p/1", "https://d.test/p/1?officeType=w", "",
          "https://d.test/p/1?officeType=zz&openEnv=hybrid", "https://d.test/p/1?officeType=w&openEnv=web"})
        EXPECT_FALSE(config.isHybridUrl(QUrl(QLatin1String(url)))) << url;
}

TEST_F(OfflineConfig, SettingsHaveTheirDefaultsAndLimits)
{
    start();
    EXPECT_EQ(nsettingsvalues::reportSampling(), 1);
    EXPECT_TRUE(nsettingsvalues::isAccountSdkUsed());
    EXPECT_EQ(nconfigvalues::openFrequency().recordExpiredDays, 30);
    const std::pair<QVariant, int> samplings[] = {
        {5, 100}, {0, 0}, {1000, 1000}, {-1, 100}, {QStringLiteral("often"), 100}};
    for (const auto& [stored, used] : samplings) {
        NDocsOfflinePage::NDOPSettings().setValue(QStringLiteral("reportPb"), stored);
        nreadonce::resetForTest();
        EXPECT_EQ(nsettingsvalues::reportSampling(), used) << stored.toString().toStdString();
    }
}

TEST_F(OfflineConfig, AnItemIsMirroredIntoTheStoreAndFollowsItsChanges)
{
    services.delayedGroups = {addOnGroup};
    start();
    const NFpcCombConfigCenterInfo info{addOnGroup, 7, QStringLiteral("mirror/"), QStringLiteral("on"), {}};
    setItem(7, R"({"on": true, "count": 3.7, "nothing": null, "i18n_title": "Hallo"})");
    EXPECT_FALSE(NFpcCombCloudMgr::instance().getValue(info, false)) << "mirrored from the next turn on";
    QCoreApplication::processEvents();
    EXPECT_FALSE(nrt::kcc::value(QStringLiteral("mirror/on")).isValid()) << "the group is not initialised";

    host->configCentre().finishInit(addOnGroup);
    QCoreApplication::processEvents();
    EXPECT_TRUE(NFpcCombCloudMgr::instance().getValue(info, false));
    EXPECT_EQ(nrt::kcc::value(QStringLiteral("mirror/count")).toLongLong(), 3);
    EXPECT_FALSE(nrt::kcc::value(QStringLiteral("mirror/nothing")).isValid());
    EXPECT_EQ(host->configCentre().i18nText(0, QStringLiteral("i18n_title")), QStringLiteral("Hallo"));

    setItem(7, R"({"on": false})");
    QCoreApplication::processEvents();
    EXPECT_FALSE(NFpcCombCloudMgr::instance().getValue(info, true));
    EXPECT_TRUE(
        NFpcCombCloudMgr::instance().getValue({0, 7, QStringLiteral("x"), QStringLiteral("on"), {}}, true));
}

TEST_F(OfflineConfig, TheMirrorInMemoryKeepsTheFirstValueOfAName)
{
    start();
    setItem(7, R"({"a": 1})");
    NFpccombCloudProxy proxy;
    EXPECT_FALSE(proxy.init(addOnGroup, 0, QStringLiteral("p/")));
    ASSERT_TRUE(proxy.init(addOnGroup, 7, QStringLiteral("p/")));
    setItem(7, R"({"a": 2, "b": 3})");
    QCoreApplication::processEvents();
    EXPECT_EQ(proxy.value(QStringLiteral("a")).toInt(), 1);
    EXPECT_EQ(proxy.value(QStringLiteral("b")).toInt(), 3);
    EXPECT_EQ(nrt::kcc::value(QStringLiteral("p/a")).toInt(), 2) << "the store follows";
}

} // namespace
