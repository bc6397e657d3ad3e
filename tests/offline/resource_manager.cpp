#include "FakeResourceCallback.h"
#include "OfflineFixture.h"
#include "offline/NDOPResourceManager.h"
#include "offline/ResourceRequests.h"
#include "proxy/NCloudDocsRecordManager.h"
#include "support/FakeBrowserWidget.h"
#include "support/HttpStub.h"
#include "support/OddFiles.h"

#include <algorithm>
#include <thread>

namespace {

using NDocsOfflinePage::NDOPResourceManager;
using NDocsOfflinePage::NDOPResponseData;

const QString envConfig = QStringLiteral("get_env_config");
const QString openFile = QStringLiteral("open_file");
const QString origin = QStringLiteral("https://docs.test");
const QString file = QStringLiteral("7");
const QString word = QStringLiteral("w");
const QString conn = QStringLiteral("Conn");
const QString inject = QStringLiteral("inject");

/** The manager, a browser without Chromium, and requests of that browser. */
class ResourceManager : public OfflineFixture
{
protected:
    using Callback = std::shared_ptr<FakeResourceCallback>;

    void switchPreloadingOn()
    {
        setItem(59743, R"({"enabled": true})");
        nreadonce::resetForTest();
    }
    static NDOPResourceManager& manager() { return *NDOPResourceManager::instance(); }

    /** A browser's request of a path; `*taken` says whether a handler took it. */
    Callback ask(const QString& path, bool* taken = nullptr)
    {
        const auto callback = std::make_shared<FakeResourceCallback>(origin + path);
        const bool isTaken = browser.deliverRequest(callback);
        if (taken)
            *taken = isTaken;
        return callback;
    }
    Callback askEnvConfig(const char* query = "&proxy=true")
    {
        return ask(QStringLiteral("/office-config/7?part=file_info,font_name_map,config,plugin_config") +
                   QLatin1String(query));
    }
    static NDOPResponseData reply(const char* body) { return {body, {{"X-A", "1"}}}; }

    FakeBrowserWidget browser;
};

TEST_F(ResourceManager, RequestsThatBelongToTheNetworkAreLetThrough)
{
    const QString open = QStringLiteral("/api/v3/office/file/7/preopen/word");
    manager().registerRequestHandler(openFile, file, word, conn, &browser);
    manager().registerRequestHandler(envConfig, file, word, conn, &browser);
    manager().registerRequestHandler(QString(), file, word, conn, &browser);
    manager().registerRequestHandler(envConfig, file, word, QString(), &browser);
    ASSERT_EQ(browser.resourceCache.size(), 2);
    manager().setResponseData(QStringLiteral("OPEN_FILE"), file, word, conn, {"open", {}});
    manager().setResponseData(envConfig, file, word, conn, {"config", {}});
    const QString config =
        QStringLiteral("/office-config/7?part=file_info,font_name_map,config,plugin_config");
    const struct
    {
        QString path;
        QByteArray body; //!< empty: not taken
    } cases[] = {{open, ""},
                 {open + QStringLiteral("?proxy=true"), ""},
                 {open + QStringLiteral("?proxy=true&connid=other"), ""},
                 {open + QStringLiteral("?proxy=false&connid=conn"), ""},
                 {open + QStringLiteral("?connid=cONN&proxy=TRUE"), "open"},
                 {config, ""},
                 {config + QStringLiteral("&proxy=true&connid=other"), "config"}};
    for (const auto& [path, body] : cases) {
        bool taken = false;
        const Callback callback = ask(path, &taken);
        EXPECT_EQ(taken, !body.isEmpty()) << qPrintable(path);
        EXPECT_EQ(callback->answers(), taken ? 1 : 0);
        EXPECT_EQ(callback->body(), body);
    }
    EXPECT_EQ(nresourcerequests::requestKey(origin, {}, file, word), QString());
    EXPECT_EQ(nresourcerequests::requestKey(origin, QStringLiteral("vcs"), file, word), origin);
    EXPECT_EQ(nresourcerequests::requestKey(origin, QStringLiteral("GET_ssr_content"), file, word),
              origin + QStringLiteral("/office-config/7?part=file_info,config,ssr"));
    const auto timeoutOf = [](const char* query) {
        const QString url = QStringLiteral("https://d/?proxy=true") + QLatin1String(query);
        return nresourcerequests::parseReplyRequest(url, envConfig, {})->timeoutMs;
    };
    for (const char* query : {"", "&timeout=0", "&timeout=-1", "&timeout=x"})
        EXPECT_EQ(timeoutOf(query), 5000u) << query;
    EXPECT_EQ(timeoutOf("&timeout=70"), 70u);
}

TEST_F(ResourceManager, ARequestWaitsForItsReply)
{
    manager().registerRequestHandler(envConfig, file, word, conn, &browser);
    const Callback first = askEnvConfig();
    EXPECT_EQ(first->answers(), 0);
    const Callback second = askEnvConfig();
    EXPECT_EQ(first->answers(), 1) << "its place is taken";
    EXPECT_TRUE(first->body().isEmpty());
    EXPECT_EQ(first->headers(), (QVariantMap{{QStringLiteral("x-client-proxy"), QStringLiteral("true")}}));
    EXPECT_EQ(second->answers(), 0);
    manager().setResponseData(envConfig, file, QString(), conn, reply("other"));
    manager().setResponseData(envConfig, file, word, conn, reply("late"));
    EXPECT_EQ(second->body(), "late");
    EXPECT_EQ(second->headers().value(QStringLiteral("X-A")), QByteArray("1"));
    EXPECT_EQ(askEnvConfig()->body(), "late") << "stored";

    manager().clearRequest(envConfig, file, word, conn);
    const std::weak_ptr<FakeResourceCallback> cleared = askEnvConfig();
    EXPECT_FALSE(cleared.expired()) << "waits again";
    manager().clearRequest(envConfig, file, word, conn);
    EXPECT_TRUE(cleared.expired()) << "let go without an answer";
    const auto timers = manager().findChildren<QTimer*>();
    EXPECT_TRUE(
        std::none_of(timers.begin(), timers.end(), [](const QTimer* timer) { return timer->isActive(); }));

    const Callback timedOut = askEnvConfig("&proxy=true&timeout=1");
    ASSERT_TRUE(waitUntil([&] { return timedOut->answers() == 1; }));
    EXPECT_TRUE(timedOut->body().isEmpty());
    EXPECT_EQ(askEnvConfig()->answers(), 1) << "the empty reply is stored";
    manager().setResponseData(envConfig, file, word, conn, reply("after"));
    EXPECT_EQ(askEnvConfig()->body(), "after");
    manager().setResponseData(envConfig, file, word, conn, {"own", {{"x-client-proxy", "2"}}});
    Callback elsewhere;
    std::thread([&] { elsewhere = askEnvConfig(); }).join();
    EXPECT_EQ(elsewhere->answers(), 0) << "answered on the manager's thread";
    ASSERT_TRUE(waitUntil([&] { return elsewhere->answers() == 1; }));
    EXPECT_EQ(elsewhere->headers().value(QStringLiteral("x-client-proxy")), QByteArray("2"));
}

TEST_F(ResourceManager, PagesAreServedFromThePackageWithTheirData)
{
    const QByteArray html = "<p><!--__INJECT__-->";
    write("package/dist_langs/zh-CN/index-w.html", html);
    write("package/inject.json", "[\"_LOCAL_CONNID\"]");
    write("secret.html", "s");
    QDir().mkpath(package + QStringLiteral("/dist_langs/zh-CN/index-"));
    for (const bool preloading : {false, true}) {
        preloading ? switchPreloadingOn() : nreadonce::resetForTest();
        browser.resourceCache.clear();
        manager().registerHtmlHandlers(origin, package, inject, nullptr);
        manager().registerHtmlHandlers(origin, package, inject, &browser);
        manager().registerHtmlHandlers(origin, package, QString(), &browser);
        ASSERT_EQ(browser.resourceCache.size(), 3);
        EXPECT_EQ(ask(QStringLiteral("/p/7?officeType=w"))->body(), html) << "no record";
        write("package/dist_langs/zh-CN/index-w.html", "changed");
        EXPECT_EQ(ask(QStringLiteral("/l/7?officeType=w"))->body(), html) << "from memory";
        write("package/dist_langs/zh-CN/index-w.html", html);
        manager().createInjectRecord(inject);
        manager().setInjectConnId(inject, conn);
        manager().setInjectConnId(QStringLiteral("unknown"), conn);
        const QByteArray page = ask(QStringLiteral("/office/new/?officeType=w"))->body();
        EXPECT_TRUE(page.contains("_LOCAL_CONNID =\"Conn\";")) << page.constData();
        for (const char* path : {"/p/7", "/p/7?officeType=s", "/p/7?officeType=/../../../../secret"}) {
            const Callback callback = ask(QLatin1String(path));
            EXPECT_EQ(callback->answers(), 1) << path;
            EXPECT_TRUE(callback->body().isEmpty()) << path;
        }
        manager().removeInjectRecord(inject);
        EXPECT_TRUE(manager().injectScriptFor(inject, word, {}).isEmpty());
        manager().unregisterHtmlHandlers(origin, package, &browser);
        EXPECT_TRUE(browser.resourceCache.isEmpty());
    }
    EXPECT_TRUE(hasLogged(QStringLiteral(
        "html proxy data found--NDocsOfflinePage::NDOPResourceManager::readDOPPreloadedHtmlData")));
    manager().registerHtmlHandlers(origin, package, inject, &browser);
    nreadonce::resetForTest();
    manager();
    bool taken = true;
    ask(QStringLiteral("/p/7?officeType=w"), &taken);
    EXPECT_FALSE(taken) << "the manager that registered it is gone";
}

TEST_F(ResourceManager, ScriptsComeFromTheScriptDirectoryOnly)
{
    const NHelioLocalPathPair pair{origin + QStringLiteral("/hybrid/weboffice-static/js/"),
                                   package + QStringLiteral("/weboffice-static/js/")};
    manager().registerScriptHandlers(origin, package, &browser);
    EXPECT_EQ(browser.resourcePaths, QVector<NHelioLocalPathPair>{pair});
    EXPECT_EQ(browser.resourceProviderTypes, QVector<int>{1});
    EXPECT_TRUE(browser.resourceCache.isEmpty());

    switchPreloadingOn();
    manager().unregisterScriptHandlers(origin, package, &browser);
    manager().registerScriptHandlers(origin, package, &browser);
    EXPECT_TRUE(browser.resourcePaths.isEmpty());
    EXPECT_EQ(browser.faviconPaths, QVector<NHelioLocalPathPair>{pair});
    write("package/weboffice-static/js/a.js", "a");
    write("package/weboffice-static/js/%2e%2e/b", "b");
    QFile::link(write("package/version", "1"), package + QStringLiteral("/weboffice-static/js/link"));
    manager().readPreloadedOrDisk(package, package + QStringLiteral("/weboffice-static/js/../../version"));
    const QString scripts = QStringLiteral("/hybrid/weboffice-static/js/");
    for (const char* name : {"a.js?v=1", "../../version", "%2e%2E/%2e%2e/version", "%2e%2e/b",
                             "..%2f..%2fversion", "..\\..\\version", "link", ""}) {
        const Callback callback = ask(scripts + QLatin1String(name));
        EXPECT_EQ(callback->answers(), 1) << name;
        EXPECT_TRUE(callback->body().isEmpty()) << name;
    }
    EXPECT_EQ(ask(scripts + QStringLiteral("a.js"))->body(), "a");
}

TEST_F(ResourceManager, WhatCannotBeServedIsLeftToTheNetwork)
{
    const QString page = write("package/dist_langs/zh-CN/index-w.html", "<p>");
    const QString script = write("package/weboffice-static/js/a.js", "a");
    for (const bool isPreloading : {false, true}) {
        if (isPreloading)
            switchPreloadingOn();
        browser.resourceCache.clear();
        manager().registerHtmlHandlers(origin, package, inject, &browser);
        manager().registerScriptHandlers(origin, package, &browser);
        for (const OddFile& odd : oddFiles) {
            ASSERT_TRUE(putOddFile(odd, page));
            ASSERT_TRUE(putOddFile(odd, script));
            const Callback answer = ask(QStringLiteral("/p/7?officeType=w"));
            ASSERT_TRUE(waitUntil([&] { return answer->answers() == 1; })) << odd.name;
            EXPECT_TRUE(answer->body().isEmpty()) << odd.name; // the gateway forwards the request
            if (isPreloading) {
                EXPECT_TRUE(ask(QStringLiteral("/hybrid/weboffice-static/js/a.js"))->body().isEmpty());
            }
            QDir(page).removeRecursively();
            QDir(script).removeRecursively();
        }
    }
    EXPECT_TRUE(hasLogged(QStringLiteral("index-w.html is not used: it has more than 8388608 bytes")));
}

TEST_F(ResourceManager, APackageIsPreloadedOnceUntilItsDataGoes)
{
    const QString page = write("package/dist_langs/zh-CN/index-w.html", "one");
    NCloudDocsRecordManager& records = *NCloudDocsRecordManager::instance();
    records.updatePluginPathRecord(word, QStringLiteral("1.0"), package);
    manager().loadLocalResources(file, word, QStringLiteral("1.0"));
    EXPECT_TRUE(hasLogged(QStringLiteral("preloading is not enabled--NDocs")));

    switchPreloadingOn();
    NCloudDocsRecordManager::instance()->updateEnvConfigRecord(file, QStringLiteral("1.0"));
    manager().loadLocalResources(QString(), word, QStringLiteral("1.0"));
    manager().loadLocalResources(file, word, QStringLiteral("2.0"));
    manager().loadLocalResources(QStringLiteral("8"), word);
    EXPECT_FALSE(hasLogged(QStringLiteral("clean timer started")));
    manager().loadLocalResources(file, word);
    ASSERT_TRUE(waitUntil([&] { return hasLogged(QStringLiteral("preload-file.json does not exist")); }));
    manager().loadLocalResources(file, word, QStringLiteral("1.0"));
    EXPECT_TRUE(hasLogged(QStringLiteral("plugin %1 already loaded").arg(package)));
    EXPECT_EQ(log.lines().filter(QStringLiteral("clean timer started")).size(), 1);
    write("package/dist_langs/zh-CN/index-w.html", "two");
    EXPECT_EQ(manager().readPreloadedOrDisk(package, page), "one");
    manager().onPreloadedDataClean();
    manager().loadLocalResources(file, word);
    ASSERT_TRUE(
        waitUntil([&] { return log.lines().filter(QStringLiteral("clean timer started")).size() == 2; }));
}

TEST_F(ResourceManager, BrowserThreadsAreServedWhileThePageChanges)
{
    switchPreloadingOn();
    write("package/dist_langs/zh-CN/index-w.html", "<p><!--__INJECT__-->");
    write("package/weboffice-static/js/a.js", "a");
    NCloudDocsRecordManager::instance()->updatePluginPathRecord(word, QStringLiteral("1.0"), package);
    manager().registerHtmlHandlers(origin, package, inject, &browser);
    manager().registerScriptHandlers(origin, package, &browser);
    const auto entries = browser.resourceCache;
    std::atomic<int> wrong{0};
    std::atomic<int> running{3};
    std::vector<std::thread> threads;
    while (int(threads.size()) < 3) {
        threads.emplace_back([&] {
            for (int round = 0; round < 300; ++round) {
                const auto page = std::make_shared<FakeResourceCallback>(origin + u"/l/7?officeType=w");
                const auto script =
                    std::make_shared<FakeResourceCallback>(origin + u"/hybrid/weboffice-static/js/a.js");
                entries.first().second(page);
                entries.last().second(script);
                wrong += !page->body().startsWith("<p>") || script->body() != "a";
            }
            --running;
        });
    }
    for (int round = 0; running > 0; ++round) {
        manager().createInjectRecord(inject);
        manager().setInjectConnId(inject, QString::number(round));
        manager().setInjectFileInfo(inject, "{}");
        manager().injectScriptFor(inject, word, {});
        if (round % 50 == 0) {
            manager().loadLocalResources(file, word, QStringLiteral("1.0"));
            manager().onPreloadedDataClean();
        }
        manager().removeInjectRecord(inject);
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
