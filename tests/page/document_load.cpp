#include "../offline/FakeResourceCallback.h"
#include "PackagePage.h"
#include "offline/NDOPResourceManager.h"
#include "page/LoadState.h"
#include "proxy/NPackageRecords.h"

#include <algorithm>
#include <random>
#include <utility>

namespace {

using NDocsOfflinePage::NDOPResourceManager;

TEST(LoadState, EventsMeanSomethingOnlyWhereTheyCanHappen)
{
    using S = LoadState;
    using E = LoadEvent;
    const struct
    {
        S from;
        E event;
        std::optional<S> to;
    } cases[] = {
        {S::Told, E::CheckVersion, S::CheckingVersion},
        {S::Told, E::Delay, S::Delaying},
        {S::Told, E::Release, {}},
        {S::CheckingVersion, E::Show, {}},
        {S::CheckingVersion, E::Delay, {}},
        {S::CheckingVersion, E::Release, S::Told},
        {S::Delaying, E::Show, S::Shown},
        {S::Delaying, E::Release, S::Told},
        {S::Shown, E::CheckVersion, {}},
        {S::Shown, E::Delay, {}},
        {S::Shown, E::WebFileReady, S::Ready},
        {S::Ready, E::Show, S::Shown},
        {S::Ready, E::Rest, S::Resting},
        {S::Resting, E::Show, {}},
        {S::Resting, E::WebFileReady, {}},
        {S::Ended, E::Show, {}},
        {S::Ended, E::Rest, {}},
        {S::Resting, E::End, S::Ended},
    };
    for (const auto& each : cases)
        EXPECT_EQ(nextState(each.from, each.event), each.to) << int(each.from) << " " << int(each.event);
}

/** A page of documents that come from a package, looked at from outside: what its browser gets. */
class DocumentLoad : public PackagePage
{
protected:
    void SetUp() override
    {
        PackagePage::SetUp();
        QDir().mkpath(packageDir(QStringLiteral("1.0")));
        writePage(QStringLiteral("1.0"));
    }
    void TearDown() override
    {
        FakeBrowserWidget::announcesLater = false;
        PackagePage::TearDown();
    }

    QString packageDir(const QString& version) const
    {
        return directory.filePath(QStringLiteral("word-%1/dist_langs/zh-CN").arg(version));
    }
    void writePage(const QString& version) const
    {
        QDir().mkpath(packageDir(version));
        QFile file(packageDir(version) + QStringLiteral("/index-w.html"));
        file.open(QIODevice::WriteOnly);
        file.write("<html><head><!--inject--></head><body>" + version.toUtf8() + "</body></html>");
    }

    static QString path(int document)
    {
        return QStringLiteral("/p/%1?officeType=w&openEnv=hybrid").arg(document);
    }
    QString url(int document) const { return server.origin() + path(document); }

    /** What the package answers to a request of the browser, whose URLs have no port; nothing when it is the
     * server's. */
    std::optional<QByteArray> served(const QString& target) const
    {
        const auto request =
            std::make_shared<FakeResourceCallback>(QStringLiteral("http://127.0.0.1") + target);
        if (!browser->deliverRequest(request))
            return std::nullopt;
        waitUntil([&request] { return request->answers() > 0; });
        return request->body();
    }
    QString shownFile() const { return QUrl(browser->currentUrl()).path().section(QLatin1Char('/'), -1); }
    NDOPResourceManager::Counts counts() const { return NDOPResourceManager::instance()->counts(); }
};

TEST_F(DocumentLoad, ADocumentThatIsHeldBackOutlivesACrashAndALoginChange)
{
    items.insert(59777, R"({"enabled": true, "delay_interval": 300})");
    begin();
    open({"/p/7?officeType=w"});
    browser->setStartupUrl(server.origin() + QStringLiteral("/start"));
    browser->deliverCrash();
    shell->setUser({});
    EXPECT_TRUE(page->notifyUrl().contains(QStringLiteral("/p/7"))) << page->notifyUrl().toStdString();
    ASSERT_TRUE(waitUntil([this] { return shownFile() == QStringLiteral("7"); }));
    for (const QUrl& loaded : qAsConst(browser->loads))
        EXPECT_EQ(loaded.path(), QStringLiteral("/p/7"));
}

TEST_F(DocumentLoad, TheNextDocumentOfAPageHasNothingOfTheOneBefore)
{
    begin();
    open({"/p/7?officeType=w"});
    ASSERT_TRUE(waitUntil([this] { return counts().replies >= 2; }));
    ASSERT_TRUE(served(path(7)));
    const QString trace = QUrlQuery(QUrl(page->notifyUrl())).queryItemValue(QStringLiteral("traceId"));
    EXPECT_FALSE(served(path(8))) << "another document is the server's";

    page->notify(url(8));
    ASSERT_TRUE(waitUntil([this] { return server.count("/api/v3/office/file/8/") == 1; }));
    EXPECT_EQ(shownFile(), QStringLiteral("8"));
    EXPECT_TRUE(served(path(8)));
    EXPECT_FALSE(served(path(7)));
    EXPECT_NE(QUrlQuery(QUrl(page->notifyUrl())).queryItemValue(QStringLiteral("traceId")), trace);
    EXPECT_EQ(counts().injectRecords, 1);
    const auto config =
        QStringLiteral("/office-config/7?part=file_info,font_name_map,config,plugin_config&proxy=true");
    EXPECT_FALSE(served(config)) << "the replies went with it";

    delete page;
    EXPECT_EQ(counts().injectRecords + counts().replies + counts().waiting, 0);
}

TEST_F(DocumentLoad, WhereTheBrowserGoesByItselfIsWhereThePageIs)
{
    begin();
    open({"/p/7?officeType=w"});
    turn();
    browser->deliverAddress(url(7));
    browser->deliverAddress(server.origin() + QStringLiteral("/p/9?x=1"));
    EXPECT_EQ(QUrl(page->notifyUrl()).path(), QStringLiteral("/p/9"));
    EXPECT_FALSE(served(path(7)));
    EXPECT_FALSE(served(path(9)));
    EXPECT_EQ(counts().injectRecords + counts().replies, 0);

    page->releasePage();
    page->load();
    turn();
    EXPECT_EQ(shownFile(), QStringLiteral("9"));

    page->notify(url(7));
    turn();
    EXPECT_EQ(shownFile(), QStringLiteral("7")) << "told again what it had left";
}

TEST_F(DocumentLoad, AReloadKeepsTheDocumentButNotItsReplies)
{
    begin();
    open({"/p/7?officeType=w"});
    ASSERT_TRUE(waitUntil([this] { return counts().replies == 2; }));
    browser->deliverAddress(url(7));
    const int asked = server.requests().size();
    browser->deliverCrash();
    EXPECT_EQ(shownFile(), QStringLiteral("7"));
    EXPECT_TRUE(served(path(7)));
    const auto config =
        QStringLiteral("/office-config/7?part=file_info,font_name_map,config,plugin_config&proxy=true");
    EXPECT_EQ(served(config), QByteArray()) << "at once, so that the page asks the server";
    EXPECT_EQ(server.requests().size(), asked);
    EXPECT_EQ(counts().injectRecords, 1);
}

TEST_F(DocumentLoad, AReleasedPageComesBackAsAnOpenOfItsOwn)
{
    for (const bool announcesLater : {false, true}) {
        for (const bool delayed : {false, true}) {
            SCOPED_TRACE(int(announcesLater) * 2 + int(delayed));
            FakeBrowserWidget::announcesLater = announcesLater;
            items.insert(59777, delayed ? R"({"enabled": true, "delay_interval": 60000})" : "{}");
            answerEnvConfig("1.0");
            nreadonce::resetForTest();
            if (!host)
                start();
            configure();
            const int before = server.count("/api/v3/office/file/7/");
            open({"/p/7?officeType=w"});
            ASSERT_TRUE(waitUntil([&] { return server.count("/api/v3/office/file/7/") == before + 1; }));
            ASSERT_TRUE(waitUntil([this] { return shownFile() == QLatin1String("7"); }));

            page->releasePage();
            EXPECT_EQ(counts().injectRecords + counts().replies, 0);
            page->load();
            ASSERT_TRUE(waitUntil([this] {
                return !browser->loads.isEmpty() &&
                       lastLoaded("from") == QLatin1String("discard-page-reload");
            }));
            turn();
            EXPECT_EQ(browser->loads.last().toString(QUrl::FullyEncoded), page->notifyUrl());
            ASSERT_TRUE(waitUntil([&] { return server.count("/api/v3/office/file/7/") >= before + 2; }));
            turn();
            EXPECT_EQ(server.count("/api/v3/office/file/7/"), before + 2) << "each request once";
            EXPECT_TRUE(served(path(7)));
            delete page;
        }
    }
}

TEST_F(DocumentLoad, ARefusedPackageIsNotServed)
{
    begin();
    open({"/p/7?officeType=w"});
    turn();
    ASSERT_TRUE(served(path(7)));
    npackagerecords::setMustUpgrade(QStringLiteral("w"), QStringLiteral("1.0"));
    page->releasePage();
    page->load();
    turn();
    EXPECT_EQ(steps("frontver_checked_by_pck", "local_pck_must_upgrade"), 1);
    EXPECT_FALSE(served(path(7)));
}

/**
 * A page that is walked about at random, and what must hold wherever it is. The seeds are fixed; a failure
 * names its seed and its way.
 */
class DocumentWalk : public DocumentLoad, public testing::WithParamInterface<int>
{
protected:
    void step(std::mt19937& random)
    {
        const auto pick = [&random](int count) { return int(random() % unsigned(count)); };
        const int document = 20 + pick(4);
        const bool hasArrived = std::exchange(isArrived, false);
        const int chosen = pick(11);
        isTold = isTold && chosen > 5; // what comes before that brings the browser elsewhere
        switch (chosen) {
        case 0:
        case 1:
            way << QStringLiteral("tell %1").arg(document);
            page->notify(url(document));
            shown = document;
            isTold = true;
            isToldInRest = page->isReleased();
            break;
        case 2:
            way << QStringLiteral("goes to %1").arg(document);
            if (hasArrived) {
                browser->deliverAddress(server.origin() + path(document));
                shown = document;
            }
            break;
        case 3:
            way << QStringLiteral("release");
            page->releasePage();
            isToldInRest = false;
            break;
        case 4:
            way << QStringLiteral("crash");
            browser->deliverCrash();
            break;
        case 5:
            way << QStringLiteral("login change");
            shell->setUser({});
            break;
        case 6:
            way << QStringLiteral("must upgrade");
            npackagerecords::setMustUpgrade(QStringLiteral("w"), QStringLiteral("1.0"));
            break;
        case 7:
            way << QStringLiteral("server");
            answerEnvConfig(pick(2) ? "1.0" : "2.0");
            break;
        case 8:
            way << QStringLiteral("server fails");
            server.answer("/api/v3/office/file", {pick(2) ? 500 : 200, "garbage", {}});
            break;
        case 9:
            way << QStringLiteral("ready");
            browser->deliverScriptReport(QStringLiteral("webFileReady"),
                                         {{QStringLiteral("fileId"), QString::number(shown)},
                                          {QStringLiteral("fileType"), QStringLiteral("w")}});
            break;
        default:
            way << QStringLiteral("turn");
            turn();
            break;
        }
        if (pick(2))
            turn();
        if (page->isReleased() && pick(3)) {
            way << QStringLiteral("return");
            page->load();
        }
    }

    /** Whether the browser has arrived where it was sent. */
    bool isSettled() const
    {
        return isTold ? browser->currentUrl() == page->notifyUrl() : shownFile() == QString::number(shown);
    }

    void check()
    {
        SCOPED_TRACE(way.join(QStringLiteral(", ")).toStdString());
        const QString file = QString::number(shown);
        EXPECT_EQ(QUrl(page->notifyUrl()).path().toStdString(), "/p/" + file.toStdString());
        EXPECT_LE(counts().injectRecords, 1);
        if (page->isReleased()) {
            EXPECT_TRUE(isToldInRest || counts().injectRecords + counts().replies + counts().waiting == 0);
            return;
        }
        EXPECT_TRUE(waitUntil([this] { return isSettled(); })) << "no wait is for ever";
        EXPECT_EQ(QUrl(page->notifyUrl()).path().toStdString(), "/p/" + file.toStdString());
        for (int other = 20; other < 24; ++other)
            EXPECT_TRUE(other == shown || !served(path(other))) << other;
        if (browser->isCreated()) {
            browser->deliverAddress(browser->currentUrl());
            isArrived = true;
        }
        QStringList connections;
        for (const HttpStub::Request& request : server.requests()) {
            if (request.target.contains("/preopen/"))
                connections << QJsonDocument::fromJson(request.body)
                                   .object()
                                   .value(QLatin1String("connid"))
                                   .toString();
        }
        const int asked = connections.size();
        EXPECT_EQ(connections.removeDuplicates(), 0) << "of " << asked;
    }

    int shown = 20;
    QStringList way;
    bool isTold = true;        //!< the browser is to be where the page was told
    bool isToldInRest = false; //!< while it was released
    bool isArrived = false;    //!< the browser reported where it is, and nothing happened since
};

TEST_P(DocumentWalk, ShowsAndServesWhatItWasToldLast)
{
    const int seed = GetParam();
    std::mt19937 random(static_cast<unsigned>(seed));
    FakeBrowserWidget::announcesLater = seed % 2;
    items.insert(59777, seed % 3 == 0 ? R"({"enabled": true, "delay_interval": 5})" : "{}");
    items.insert(62377, seed % 5 == 0 ? R"({"enabled": true, "vcsRequestTimeoutInterval": 20})" : "{}");
    items.insert(60994, seed % 2 == 0 ? R"({"enabled": true})" : "{}");
    items.insert(59743, seed % 7 == 0 ? R"({"enabled": true})" : "{}");
    answerEnvConfig("1.0");
    begin();
    install("2.0");
    writePage(QStringLiteral("2.0"));
    open({"/p/20?officeType=w&openEnv=hybrid"});
    check();
    for (int i = 0; i < 30 && !HasFailure(); ++i) {
        step(random);
        check();
    }
    delete page;
    EXPECT_EQ(counts().injectRecords + counts().replies + counts().waiting, 0);
}

/** How many walks; more with SKYLEAF_WALKS. */
int walks()
{
    const int wanted = qEnvironmentVariableIntValue("SKYLEAF_WALKS");
    return wanted > 0 ? wanted : 12;
}

INSTANTIATE_TEST_SUITE_P(Seeds, DocumentWalk, testing::Range(1, 1 + walks()));

} // namespace
