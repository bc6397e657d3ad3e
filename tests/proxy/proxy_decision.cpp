#include "base/NClock.h"
#include "base/NReadOnce.h"
#include "nheliostat/NHelioCloudSvrProxy.h"
#include "proxy/NCloudDocsPageProxyManager.h"
#include "proxy/NCloudDocsRecordManager.h"
#include "proxy/NPackageRecords.h"
#include "support/LogRecorder.h"
#include "support/ShellFixture.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

/** A proxy manager over a browser without Chromium and packages "quillword" in directories of their versions.
 */
class ProxyDecision : public ShellFixture
{
protected:
    void SetUp() override
    {
        ShellFixture::SetUp();
        nreadonce::resetForTest();
        services.plugins.insert(QStringLiteral("quillword"), {makePackage("1.0"), {}});
        setItem(R"({"DOPMasterSwitch": true, "wordDOPSwitch": true})", 53613);
    }

    /** An item of the configuration centre from the start on. */
    void setItem(const char* json, int item) { m_items.insert(item, QJsonDocument::fromJson(json).object()); }

    void begin()
    {
        start();
        for (auto item = m_items.begin(); item != m_items.end(); ++item)
            host->configCentre().set(60, item.key(), item.value());
        browser = std::make_unique<FakeBrowserWidget>();
        browser->initWebView();
        manager.setBrowser(browser.get());
    }

    void TearDown() override
    {
        browser.reset();
        ShellFixture::TearDown();
    }

    static NDOPProxyInfo info(const char* frontVer = "")
    {
        NDOPProxyInfo made;
        made.fileId = QStringLiteral("7");
        made.officeType = QStringLiteral("w");
        made.frontVer = QLatin1String(frontVer);
        made.injectId = QStringLiteral("inject");
        made.connId = QStringLiteral("conn");
        made.notifyUrl = QStringLiteral("https://docs.test/p/7?officeType=w&openEnv=hybrid");
        made.pluginName = QStringLiteral("quillword");
        made.traceId = QStringLiteral("trace");
        return made;
    }

    /** The reported steps, "step error", one after the other. */
    QString steps() const
    {
        QStringList found;
        for (const auto& event : host->dataCollection().events()) {
            if (event.name == QLatin1String("docs_localproxy_dop_result"))
                found << event.fields.value(QStringLiteral("step_name")) + u' ' +
                             event.fields.value(QStringLiteral("error_msg"));
        }
        return found.join(QStringLiteral(", "));
    }

    NDcOrderedFields lastStep() const
    {
        NDcOrderedFields fields;
        for (const auto& event : host->dataCollection().events())
            fields = event.name == QLatin1String("docs_localproxy_dop_result") ? event.fields : fields;
        return fields;
    }

    QString servedPackage() const { return manager.current().pluginPath; }

    std::unique_ptr<FakeBrowserWidget> browser;
    NCloudDocsPageProxyManager manager;
    LogRecorder log;

private:
    QMap<int, QJsonObject> m_items;
};

TEST_F(ProxyDecision, APackageIsInstalledOnceForALoad)
{
    begin();
    manager.setProxy(info());
    manager.setProxy(info());
    EXPECT_EQ(steps(),
              QStringLiteral("set_start no_error, url_checking no_error, frontver_checked_by_pck no_error, "
                             "local_plugin_setting no_error, set_finish no_error"));
    EXPECT_EQ(servedPackage(), directory.filePath(QStringLiteral("word-1.0")));
    EXPECT_EQ(manager.current().frontVer, QStringLiteral("1.0"));
    QStringList prefixes;
    for (const auto& entry : qAsConst(browser->resourceCache))
        prefixes << entry.first;
    EXPECT_EQ(prefixes.filter(QStringLiteral("/preopen/word")).size(), 1);
    EXPECT_EQ(prefixes.filter(QStringLiteral("/office-config/7")).size(), 2);
    EXPECT_TRUE(prefixes.contains(QStringLiteral("https://docs.test/p/")));
    const NDcOrderedFields fields = lastStep();
    EXPECT_EQ(fields.value(QStringLiteral("plugin_state")), QStringLiteral("loaded"));
    EXPECT_EQ(fields.value(QStringLiteral("plugin_version")), QStringLiteral("1.0"));
    EXPECT_EQ(fields.value(QStringLiteral("trace_id")), QStringLiteral("trace"));
    EXPECT_EQ(fields.value(QStringLiteral("front_ver")), QStringLiteral("1.0"));
    EXPECT_FALSE(fields.contains(QStringLiteral("reset_front_ver")));

    NDOPProxyInfo again = info();
    again.injectId = QStringLiteral("other");
    manager.setProxy(again);
    EXPECT_EQ(steps().count(QStringLiteral("set_finish")), 2) << "a new load installs again";
}

/** What is wrong before the decision, and the steps that it ends with. */
struct Refusal
{
    const char* switches;
    std::function<void(NDOPProxyInfo&)> change;
    std::function<void(const QString& package)> arrange;
    const char* lastSteps;
};

constexpr auto allOn = R"({"DOPMasterSwitch": true, "wordDOPSwitch": true})";
constexpr auto unforced = R"({"DOPMasterSwitch": true, "wordDOPSwitch": true, "forceProxy": false})";

const Refusal refusals[] = {
    {R"({"DOPMasterSwitch": true})", {}, {}, "set_switch_checking switch_off"},
    {R"({"wordDOPSwitch": true})", {}, {}, "set_switch_checking switch_off"},
    {allOn, [](NDOPProxyInfo& i) { i.notifyUrl.clear(); }, {}, "url_checking notify_url_empty"},
    {unforced,
     [](NDOPProxyInfo& i) { i.notifyUrl.replace(QLatin1String("docs.test"), QLatin1String("x.test")); },
     {},
     "url_checking host_not_match_https://x.test/p/7?officeType=w&openEnv=hybrid_https://docs.test, need add "
     "proxy"},
    {allOn,
     [](NDOPProxyInfo& i) { i.notifyUrl.replace(QLatin1String("hybrid"), QLatin1String("web")); },
     {},
     "url_checking url_param_not_match"},
    {allOn,
     [](NDOPProxyInfo& i) { i.pluginName = QStringLiteral("quillunknown"); },
     {},
     "load_plugin direct_plugin_load_error, set_finish no_error"},
    {allOn,
     {},
     [](const QString& package) { QDir(package).removeRecursively(); },
     "local_plugin_setting plugin_error, set_finish no_error"},
    {allOn,
     {},
     [](const QString& package) { QFile(package + QLatin1String("/version")).resize(0); },
     "local_plugin_setting local_pck_data_error, set_finish no_error"},
    {allOn,
     {},
     [](const QString&) { npackagerecords::setExpireTime(QStringLiteral("w"), QStringLiteral("1.0"), 1); },
     "frontver_checked_by_pck local_pck_req_expire, set_finish no_error"},
    {allOn,
     {},
     [](const QString&) { npackagerecords::setMustUpgrade(QStringLiteral("w"), QStringLiteral("1.0")); },
     "frontver_checked_by_pck local_pck_must_upgrade, set_finish no_error"},
};

class Refusals : public ProxyDecision, public testing::WithParamInterface<Refusal>
{
};

TEST_P(Refusals, AreReportedAndLeaveThePageToTheServer)
{
    setItem(GetParam().switches, 53613);
    begin();
    if (GetParam().arrange)
        GetParam().arrange(directory.filePath(QStringLiteral("word-1.0")));
    NDOPProxyInfo asked = info();
    if (GetParam().change)
        GetParam().change(asked);
    manager.setProxy(asked);
    EXPECT_TRUE(steps().endsWith(QLatin1String(GetParam().lastSteps))) << steps().toStdString();
    EXPECT_TRUE(servedPackage().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Each, Refusals, testing::ValuesIn(refusals));

TEST_F(ProxyDecision, WithTheVersionCheckItsRecordDecides)
{
    setItem(R"({"enabled": true})", 62377);
    begin();
    npackagerecords::setExpireTime(QStringLiteral("w"), QStringLiteral("1.0"), 1); // does not count here
    manager.setProxy(info());
    EXPECT_FALSE(servedPackage().isEmpty()) << "nothing is known against it";
    for (const auto& [checked, error] :
         {std::pair("1.0", "no_error"), std::pair("1.1", "local_vcs_must_upgrade")}) {
        npackagerecords::setCheckedVersion(QStringLiteral("w"), QStringLiteral("1.0"),
                                           QLatin1String(checked));
        NCloudDocsPageProxyManager other;
        other.setBrowser(browser.get());
        other.setProxy(info());
        EXPECT_TRUE(steps().contains(QStringLiteral("frontver_checked_by_vcs ") + QLatin1String(error)))
            << checked;
        EXPECT_EQ(other.current().pluginPath.isEmpty(), error != std::string("no_error"));
    }
}

TEST_F(ProxyDecision, AnotherHostIsServedWhenTheProxyIsForced)
{
    begin();
    NDOPProxyInfo asked = info();
    asked.notifyUrl.replace(QLatin1String("docs.test"), QLatin1String("x.test"));
    manager.setProxy(asked);
    EXPECT_FALSE(servedPackage().isEmpty());
    EXPECT_TRUE(steps().contains(QStringLiteral("need add proxy, url_checking no_error")));
}

TEST_F(ProxyDecision, TheVersionThatTheFileWasOpenedWithComesFirst)
{
    begin();
    const QString other = makePackage("0.9");
    auto* records = NCloudDocsRecordManager::instance();
    records->updateEnvConfigRecord(QStringLiteral("7"), QStringLiteral("0.9"));
    records->updatePluginPathRecord(QStringLiteral("w"), QStringLiteral("0.9"), other);
    manager.setProxy(info());
    EXPECT_EQ(servedPackage(), other);

    QDir(other).removeRecursively();
    NCloudDocsPageProxyManager next;
    next.setBrowser(browser.get());
    next.setProxy(info());
    EXPECT_TRUE(steps().contains(QStringLiteral("local_plugin_setting plugin_error")))
        << steps().toStdString();
    EXPECT_EQ(next.current().frontVer, QStringLiteral("1.0")) << "the installed package takes its place";
}

TEST_F(ProxyDecision, AnUpdateSwitchesToAnInstalledVersion)
{
    begin();
    manager.setProxy(info());
    EXPECT_TRUE(manager.updateProxy(info("1.0"))) << "no need";
    EXPECT_FALSE(manager.updateProxy(info("3.0")));
    EXPECT_TRUE(steps().endsWith(QStringLiteral("update_frontver_comparing no plugin available")));
    EXPECT_EQ(lastStep().value(QStringLiteral("reset_front_ver")), QStringLiteral("3.0"));
    EXPECT_EQ(manager.current().frontVer, QStringLiteral("1.0")) << "what was served goes on";

    host->plugins().setUpgradePath(QStringLiteral("quillword"), makePackage("2.0"));
    EXPECT_TRUE(manager.updateProxy(info("2.0")));
    EXPECT_EQ(servedPackage(), directory.filePath(QStringLiteral("word-2.0")));
    const QString recorded = makePackage("1.5");
    NCloudDocsRecordManager::instance()->updatePluginPathRecord(QStringLiteral("w"), QStringLiteral("1.5"),
                                                                recorded);
    EXPECT_TRUE(manager.updateProxy(info("1.5")));
    EXPECT_EQ(servedPackage(), recorded);
    EXPECT_TRUE(steps().endsWith(QStringLiteral("update_finish no_error")));

    NDOPProxyInfo noFile = info("2.0");
    noFile.fileId.clear();
    EXPECT_FALSE(manager.updateProxy(noFile));
    EXPECT_FALSE(manager.updateProxy(info()));
    browser->releaseWebView();
    EXPECT_FALSE(manager.updateProxy(info("2.0")));
}

TEST_F(ProxyDecision, AVersionKnownFromTheBeginningBringsTheRepliesToo)
{
    begin();
    const auto replies = [&] {
        return std::count_if(browser->resourceCache.cbegin(), browser->resourceCache.cend(),
                             [](const auto& entry) {
                                 return entry.first.contains(QLatin1String("/preopen/")) ||
                                        entry.first.contains(QLatin1String("/office-config/"));
                             });
    };
    EXPECT_TRUE(manager.updateProxy(info("1.0")));
    EXPECT_EQ(replies(), 3);
    EXPECT_EQ(servedPackage(), directory.filePath(QStringLiteral("word-1.0")));
    EXPECT_TRUE(manager.updateProxy(info("1.0")));
    EXPECT_EQ(replies(), 3) << "they are left as they are";
}

TEST_F(ProxyDecision, RemovingTakesThePagesPrefixesOutOfTheBrowser)
{
    begin();
    manager.setProxy(info());
    manager.removeProxies();
    for (const auto& entry : qAsConst(browser->resourceCache))
        EXPECT_FALSE(entry.first.endsWith(QLatin1String("/p/"))) << entry.first.toStdString();
    EXPECT_TRUE(browser->resourcePaths.isEmpty());
    EXPECT_TRUE(browser->faviconPaths.isEmpty());
}

} // namespace
