#include "FakeApplication.h"
#include "OfflineFixture.h"
#include "offline/NDOPPluginActivator.h"
#include "offline/NHelioCloudDocsLocalData.h"
#include "offline/TavaProcess.h"
#include "support/HttpStub.h"

#include <QSignalSpy>

namespace {

class LocalData : public OfflineFixture
{
protected:
    static TavaIpcResult record(const char* data, int code = 0)
    {
        return {code, {{QStringLiteral("data"), QString::fromUtf8(data)}}};
    }

    FakeApplication shell;
    const QString file = QStringLiteral("7");
};

TEST_F(LocalData, AFailedAnswerChangesNothingAndEndsTheQuery)
{
    runtime.settings.insert(QStringLiteral("skyleaf/selectlocaldatatimeout"), 600000);
    restart();
    NHelioCloudDocsLocalData local;
    QSignalSpy finished(&local, &NHelioCloudDocsLocalData::queryFinish);
    EXPECT_FALSE(local.query({}));
    EXPECT_TRUE(local.dataValue(QStringLiteral("a")).isNull());

    // {"x":[1]} in Base64
    const char* good = R"({"pkgSyncPath": "/s", "extends": "eyJ4IjpbMV19"})";
    const struct
    {
        bool success;
        TavaIpcResult result;
        QByteArray rawData;
        QString syncPath;
        bool extends;
    } answers[] = {
        {false, record(good), "", {}, false},
        {true, record(good, 3), "", {}, false},
        {true, record(good), good, QStringLiteral("/s"), true},
        {true, {}, good, QStringLiteral("/s"), true},
        {false, record("{}"), good, QStringLiteral("/s"), true},
        {true, record("[1]"), "[1]", {}, true},
        {true, record(R"({"extends": "!"})"), R"({"extends": "!"})", {}, false},
    };
    int query = 0;
    for (const auto& answer : answers) {
        ASSERT_TRUE(local.query(file));
        shell.cloud.deliverFileInfo(query, true, record("{\"stale\": 1}"));
        EXPECT_EQ(finished.size(), query) << "of another query";
        shell.cloud.deliverFileInfo(++query, answer.success, answer.result);
        shell.cloud.deliverFileInfo(query, true, record("{\"again\": 1}"));
        EXPECT_EQ(finished.size(), query);
        EXPECT_FALSE(local.findChild<QTimer*>()->isActive());
        EXPECT_EQ(local.rawData(), answer.rawData);
        EXPECT_EQ(local.dataValue(QStringLiteral("pkgSyncPath")).toString(), answer.syncPath);
        EXPECT_EQ(local.extendsValue(QStringLiteral("x")).isArray(), answer.extends) << query;
    }
    EXPECT_EQ(shell.cloud.askedFiles.first(), QStringLiteral("|7"));
}

TEST_F(LocalData, ASlowServiceIsCutOff)
{
    runtime.settings.insert(QStringLiteral("skyleaf/selectlocaldatatimeout"), 1);
    restart();
    NHelioCloudDocsLocalData local;
    QSignalSpy finished(&local, &NHelioCloudDocsLocalData::queryFinish);
    ASSERT_TRUE(local.query(file));
    ASSERT_TRUE(finished.wait());
    shell.cloud.deliverFileInfo(1, true, record("{\"a\": 1}"));
    EXPECT_EQ(finished.size(), 1);
    EXPECT_TRUE(local.rawData().isEmpty());
    EXPECT_TRUE(local.dataValue(QStringLiteral("a")).isNull());
}

TEST_F(LocalData, AMissingPlugInIsLoadedOrAskedFor)
{
    services.plugins.insert(QStringLiteral("quillword"), {directory.filePath(QStringLiteral("none")), {}});
    restart();
    setItem(53613, R"({"DOPMasterSwitch": true, "wordDOPSwitch": true, "vsDOPSwitch": true})");
    NDOPPluginActivator& activator = NDOPPluginActivator::instance();
    activator.setScene(QStringLiteral("skyleaf"));
    for (const char* officeType : {"", "p", "x", "s", "w", "w"})
        activator.requestPluginActivation(QLatin1String(officeType));
    EXPECT_TRUE(host->dataCollection().events().empty()) << "not in the caller's stack";
    ASSERT_TRUE(waitUntil([this] { return shell.cloud.calls.size() == 2; })) << "one for each failed load";
    QCoreApplication::processEvents();
    ASSERT_EQ(shell.cloud.calls.size(), 2u);
    EXPECT_EQ(shell.cloud.functions.first(), QStringLiteral("tavaIpcCall|TavaIpcArg|"));
    EXPECT_FALSE(shell.cloud.hadReceiver);
    const vlt::tava::TavaIpcArg& call = shell.cloud.calls.front();
    EXPECT_EQ(call.nameSpace, "");
    EXPECT_EQ(call.method, "downloadDOPPluginOnRandomTime");
    EXPECT_EQ(call.argMap, (std::map<std::string, std::string>{{"pluginName", "quillword"}}));

    QStringList reports;
    for (const auto& event : host->dataCollection().events()) {
        EXPECT_EQ(event.name, QStringLiteral("docs_localproxy_dop_active"));
        EXPECT_EQ(event.fields.value(QStringLiteral("scene")), QStringLiteral("skyleaf"));
        reports << event.fields.value(QStringLiteral("pluginname")) + u'|' +
                       event.fields.value(QStringLiteral("errormsg")) + u'|' +
                       event.fields.value(QStringLiteral("pluginstate"));
    }
    EXPECT_EQ(reports, (QStringList{QStringLiteral("quillvs|plugin is null|plugin not exist"),
                                    QStringLiteral("quillword|active|not loaded"),
                                    QStringLiteral("quillword|active|load failed")}));
}

TEST_F(LocalData, TheServiceProcessIsStartedWhenItDoesNotRun)
{
    bool running = false;
    QStringList starts;
    host->setCloudServiceHooks({[&] { return running; },
                                [&](const QString& commandLine, bool wait) {
                                    starts << commandLine + (wait ? u'w' : u'-');
                                    return true;
                                },
                                {}});
    runTavaProcessIfNotExists();
    running = true;
    runTavaProcessIfNotExists();
    EXPECT_EQ(starts, QStringList{QStringLiteral("-")});
    EXPECT_TRUE(hasLogged(QStringLiteral("run vltcloudsvr.exe--NDOPStorageInfoHandler::runTava")));
    host.reset();
    runTavaProcessIfNotExists();
}

} // namespace
