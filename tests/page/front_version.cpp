#include "PackagePage.h"
#include "proxy/NPackageRecords.h"

#include <QElapsedTimer>

namespace {

using FrontVersion = PackagePage;

TEST_F(FrontVersion, ADocumentIsServedFromThePackageWhileItsRequestsRun)
{
    begin();
    open();
    ASSERT_TRUE(waitForLog(QStringLiteral("add open_file proxy")));
    EXPECT_EQ(browser->loads.size(), 1);
    EXPECT_EQ(lastLoaded("client_proxy"), QStringLiteral("true"));
    EXPECT_EQ(lastLoaded("sdkversion"), QStringLiteral("3.0.7"));
    EXPECT_EQ(steps("set_finish", "no_error"), 1);
    EXPECT_TRUE(waitUntil([this] { return server.count("/api/v3/office/file/7/preopen/word") == 1; }));
    const QByteArray body = server.last("/api/v3/office/file").body;
    EXPECT_EQ(QJsonDocument::fromJson(body).object().value(QLatin1String("connid")).toString().size(), 32);

    page->notify(page->notifyUrl());
    EXPECT_TRUE(hasLogged(QStringLiteral("already request--")));
}

TEST_F(FrontVersion, ANewDocumentHasNothingToRequest)
{
    begin();
    open({"/office/new/w?officeType=w"});
    EXPECT_FALSE(hasLogged(QStringLiteral("start request--")));
    open({"/p/?officeType=w"});
    EXPECT_FALSE(hasLogged(QStringLiteral("start request--")));
}

TEST_F(FrontVersion, ARunMadeAfterTheLifetimeOfTheRepliesHasNewIds)
{
    items.insert(57911, R"({"repsonse_data_lifetime": 1})");
    begin();
    open();
    ASSERT_TRUE(waitUntil([this] { return server.count("/api/v3/office/file") == 1; }));
    turn();
    const QByteArray first = server.last("/api/v3/office/file").body;
    QElapsedTimer sinceReply;
    sinceReply.start();
    waitUntil([&] { return sinceReply.elapsed() > 1200; });
    page->notify(page->notifyUrl());
    EXPECT_TRUE(waitUntil([this] { return server.count("/api/v3/office/file") == 2; }));
    EXPECT_TRUE(hasLogged(QStringLiteral("data expired")));
    EXPECT_NE(server.last("/api/v3/office/file").body, first);
}

TEST_F(FrontVersion, ADocumentOfUnknownTypeWaitsForTheVersionCheck)
{
    items.insert(62377, R"({"enabled": true, "vcsRequestTimeoutInterval": 60000})");
    answerVersionCheck(R"({"client_version": "1.0", "office_type": "w"})");
    begin();
    open({"/p/7"});
    ASSERT_TRUE(waitForLog(QStringLiteral("vcs office type is w")));
    EXPECT_EQ(lastLoaded("officeType"), QStringLiteral("w"));
    EXPECT_EQ(browser->loads.size(), 1);
}

TEST_F(FrontVersion, TheVersionCheckEndsTheWaitOfAPageThatLearnedItsTypeMeanwhile)
{
    for (const bool delayed : {false, true}) {
        items.insert(62377, R"({"enabled": true, "vcsRequestTimeoutInterval": 60000})");
        items.insert(59777, delayed ? R"({"enabled": true})" : "{}");
        answerVersionCheck("{}");
        nreadonce::resetForTest();
        if (!host)
            start();
        configure();
        open({"/p/7", "/p/7?officeType=w"});
        EXPECT_TRUE(waitUntil([this] { return browser->loads.size() == 1; })) << delayed;
        EXPECT_EQ(lastLoaded("officeType"), QStringLiteral("w"));
    }
}

TEST_F(FrontVersion, NothingElseIsShownWhileTheLoadIsHeldBack)
{
    HttpStub::Answer silent;
    silent.silent = true;
    server.answer("/", silent);
    for (const auto& [item, path] : {std::pair(62377, "/p/7"), std::pair(59777, "/p/7?officeType=w")}) {
        items.remove(62377);
        items.remove(59777);
        items.insert(item,
                     R"({"enabled": true, "vcsRequestTimeoutInterval": 60000, "delay_interval": 60000})");
        nreadonce::resetForTest();
        if (!host)
            start();
        configure();
        open({path});
        turn();
        EXPECT_TRUE(browser->loads.isEmpty()) << path;
    }
}

TEST_F(FrontVersion, TheVersionCheckThatDoesNotAnswerIsWaitedForAWhile)
{
    items.insert(62377, R"({"enabled": true, "vcsRequestTimeoutInterval": 20})");
    items.insert(59777, R"({"enabled": true})");
    HttpStub::Answer silent;
    silent.silent = true;
    server.answer("/api/v3/office/prefetch/vcs/", silent);
    begin();
    open({"/p/7"});
    EXPECT_TRUE(waitForLog(QStringLiteral("vcs response is time out")));
    EXPECT_EQ(browser->loads.size(), 1);
    const auto events = host->dataCollection().events();
    EXPECT_TRUE(std::any_of(events.begin(), events.end(), [](const DcEvent& event) {
        return event.name == QLatin1String("docs_cloud_vcsrequesttimeout") &&
               event.fields.value(QStringLiteral("fileId")) == QLatin1String("7");
    }));
}

TEST_F(FrontVersion, ADelayedLoadTakesTheAnsweredVersion)
{
    items.insert(59777, R"({"enabled": true, "delay_interval": 60000})");
    items.insert(62377, R"({"enabled": true})");
    answerVersionCheck(R"({"client_version": "2.0"})");
    begin();
    install("2.0");
    open();
    ASSERT_TRUE(waitForLog(QStringLiteral("set delay load finished")));
    EXPECT_TRUE(hasLogged(QStringLiteral("desotry delay load timer")));
    EXPECT_EQ(steps("update_finish", "no_error"), 1);
    EXPECT_EQ(lastLoaded("openEnv"), QStringLiteral("hybrid"));
    EXPECT_EQ(npackagerecords::checkedVersion(QStringLiteral("w"), QStringLiteral("1.0")),
              QStringLiteral("2.0"));
    EXPECT_EQ(browser->loads.size(), 1);
}

TEST_F(FrontVersion, ADelayedLoadOfAVersionThatIsNotThereGoesToTheServer)
{
    items.insert(59777, R"({"enabled": true, "delay_interval": 60000})");
    answerEnvConfig("3.0");
    begin();
    open();
    ASSERT_TRUE(waitForLog(QStringLiteral("set delay load finished")));
    EXPECT_TRUE(lastLoaded("openEnv").isEmpty());
    EXPECT_EQ(lastLoaded("referer"), QStringLiteral("version_mismatch"));
    EXPECT_EQ(lastLoaded("versionMismatchAddedBy"), QStringLiteral("client"));
    EXPECT_EQ(NCloudDocsRecordManager::instance()->retrieveEnvConfigRecord(QStringLiteral("7")).frontVer,
              QStringLiteral("3.0"));
}

TEST_F(FrontVersion, ADelayThatRunsOutLoadsWhatIsInstalled)
{
    items.insert(59777, R"({"enabled": true, "delay_interval": 10})");
    HttpStub::Answer silent;
    silent.silent = true;
    server.answer("/", silent);
    begin();
    open();
    ASSERT_TRUE(waitForLog(QStringLiteral("set delay load finished")));
    EXPECT_EQ(steps("set_finish", "no_error"), 1);
    EXPECT_EQ(browser->loads.size(), 1);
}

TEST_F(FrontVersion, TheEnvironmentConfigurationResetsTheProxyWhenAllowed)
{
    answerEnvConfig("2.0");
    begin();
    install("2.0");
    open();
    EXPECT_TRUE(waitForLog(QStringLiteral("reseting proxy is not enabled")));
    EXPECT_TRUE(hasLogged(QStringLiteral("front ver changed!  old front ver 1.0 and new front ver 2.0")));
    EXPECT_EQ(steps("update_finish", "no_error"), 0);

    items.insert(60994, R"({"enabled": true})");
    nreadonce::resetForTest();
    host->configCentre().set(60, 60994, QJsonDocument::fromJson(items.value(60994)).object());
    open({"/p/8?officeType=w"});
    EXPECT_TRUE(waitUntil([this] { return steps("update_finish", "no_error") == 1; }));
    EXPECT_EQ(browser->loads.size(), 1) << "the running page stays";
}

TEST_F(FrontVersion, AResetThatFailsReloadsFromTheServerOnce)
{
    items.insert(60994, R"({"enabled": true})");
    answerEnvConfig("3.0");
    begin();
    open();
    ASSERT_TRUE(waitForLog(QStringLiteral("params removed, url is")));
    EXPECT_EQ(browser->loads.size(), 2);
    EXPECT_EQ(lastLoaded("referer"), QStringLiteral("version_mismatch"));
}

TEST_F(FrontVersion, AnAnswerWithTheSentVersionOrNoneChangesNothing)
{
    items.insert(60994, R"({"enabled": true})");
    for (const auto& [version, text] : {std::pair("1.0", "handle env config front ver not updated"),
                                        std::pair("", "env config front ver is empty")}) {
        nreadonce::resetForTest();
        answerEnvConfig(version);
        if (!host)
            begin();
        open();
        EXPECT_TRUE(waitForLog(QLatin1String(text))) << text;
        EXPECT_EQ(steps("update_start", "no_error"), 0);
    }
}

} // namespace
