#include "page/NHelioCloudDocsPage.h"

#include "base/NClock.h"
#include "base/NReadOnce.h"
#include "nheliostat/NHelioCloudSvrProxy.h"
#include "nheliostat/NHelioSubPage.h"
#include "support/LogRecorder.h"
#include "support/ShellFixture.h"

#include <QJsonDocument>
#include <QSignalSpy>
#include <QUrlQuery>

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

const QString documentUrl = s("https://docs.test/p/7?suffix=docx");

class CloudDocsPage : public ShellFixture
{
protected:
    void SetUp() override
    {
        ShellFixture::SetUp();
        nreadonce::resetForTest();
        nclock::setNowForTest([this] { return now; });
    }

    void TearDown() override
    {
        ShellFixture::TearDown();
        nclock::setNowForTest({});
    }

    /** A page in the window; its browser arrives at the next turn of the event loop. */
    NHelioCloudDocsPage* addPage()
    {
        auto* page = new NHelioCloudDocsPage(nullptr, true, false);
        window->centralArea()->addPage(page);
        return page;
    }

    static FakeBrowserWidget* browserOf(NHelioCloudDocsPage* page)
    {
        return page->findChild<FakeBrowserWidget*>();
    }

    /** A page that shows a document, loaded. */
    NHelioCloudDocsPage* addOpenPage()
    {
        NHelioCloudDocsPage* page = addPage();
        turn();
        page->notify(documentUrl);
        page->load();
        turn();
        browserOf(page)->deliverLoadStarted();
        browserOf(page)->deliverLoadFinished(true);
        return page;
    }

    static QString query(const QString& url, const char* name)
    {
        return QUrlQuery(QUrl(url)).queryItemValue(QLatin1String(name));
    }

    QStringList eventFields(const char* event, const char* field)
    {
        QStringList found;
        for (const auto& posted : host->dataCollection().events()) {
            if (posted.name == QLatin1String(event))
                found << posted.fields.value(QLatin1String(field));
        }
        return found;
    }

    QDateTime now = QDateTime::fromMSecsSinceEpoch(1700000000000);
};

TEST_F(CloudDocsPage, LoadBeforeTheBrowserWaitsForIt)
{
    start();
    NHelioCloudDocsPage* page = addPage();
    page->notify(documentUrl);
    page->load();
    page->load();
    ASSERT_EQ(browserOf(page), nullptr);
    turn();

    FakeBrowserWidget* browser = browserOf(page);
    ASSERT_NE(browser, nullptr);
    EXPECT_EQ(browser->id, s("E863C9B0-0AC0-4C35-A03B-8BD8AD6FB910"));
    EXPECT_EQ(browser->name, s("nhelio_cloud_docs_page"));
    EXPECT_EQ(browser->webViewsMade, 1);
    ASSERT_EQ(browser->loads.size(), 1);
    const QString url = browser->loads.first().toString();
    EXPECT_EQ(url, page->notifyUrl());
    EXPECT_EQ(query(url, "officeType"), s("w"));
    EXPECT_EQ(query(url, "client_proxy"), s("false"));
    EXPECT_EQ(query(url, "traceId").size(), 32);

    EXPECT_EQ(browser->startupUrls.first(),
              s("https://docs.test/?v=1.2&type=app&channel=chan&t=1700000000000"));
    EXPECT_EQ(browser->flags, (QMap<int, bool>{{1024, false}, {2, false}, {512, true}}));
    EXPECT_TRUE(browser->property("cachePath")
                    .toString()
                    .endsWith(s("/vlt/addons/data/win-x64/ncloudpage/cache-v2")));
    EXPECT_TRUE(browser->property("cookiePath").toString().endsWith(s("ncloudpage/cookies-v3")));
    EXPECT_EQ(browser->supportedProtocols, QStringList({s("weixin"), s("xweixin")}));
    EXPECT_EQ(browser->container()->deliverRequestHeaders().value("User-Agent"),
              QByteArray("FakeBrowser/1.0 VLTQuillHybrid/1.0"));
    EXPECT_NE(browser->scriptObject(), nullptr);
    EXPECT_EQ(eventFields("docs_cloud_open", "step"), QStringList(s("load")));
}

TEST_F(CloudDocsPage, NotifyLoadsOnlyWhatIsNew)
{
    start();
    NHelioCloudDocsPage* page = addOpenPage();
    const auto loads = browserOf(page)->loads.size();
    page->notify(page->notifyUrl());
    EXPECT_EQ(browserOf(page)->loads.size(), loads);
    page->notify(s("https://docs.test/p/8?suffix=docx"));
    EXPECT_EQ(browserOf(page)->loads.size(), loads + 1);
    EXPECT_NE(query(page->notifyUrl(), "traceId"),
              query(browserOf(page)->loads.first().toString(), "traceId"))
        << "an open of its own";
}

TEST_F(CloudDocsPage, LockLeavesALockedPageAlone)
{
    start();
    NHelioCloudDocsPage* page = addOpenPage();
    FakeBrowserWidget* browser = browserOf(page);
    browser->deliverAddress(s("https://docs.test/secret/1"));
    const auto loads = browser->loads.size();
    page->notify(s("LOCK"));
    EXPECT_EQ(browser->loads.size(), loads);
    browser->deliverAddress(s("https://docs.test/p/7"));
    page->notify(s("lock"));
    ASSERT_EQ(browser->loads.size(), loads + 1);
    EXPECT_EQ(browser->loads.last().path(), s("/lock"));
}

TEST_F(CloudDocsPage, ToolBarNeedsTheUsersSetting)
{
    runtime.settings.insert(s("6.0/vltoffice/skyleaf/AllowCloudDocsPageShowToolbar"), false);
    start();
    NHelioCloudDocsPage* page = addOpenPage();
    page->notify(s("SetToolBar=1"));
    EXPECT_TRUE(page->isToolBarVisible());
    EXPECT_FALSE(browserOf(page)->toolbarVisible.last());

    nreadonce::resetForTest();
    runtime.settings.clear();
    nrt::host::configure(runtime);
    page->notify(s("setToolBar=2"));
    EXPECT_TRUE(browserOf(page)->toolbarVisible.last());
    page->notify(s("setToolBar=x"));
    EXPECT_FALSE(page->isToolBarVisible());
    EXPECT_FALSE(browserOf(page)->toolbarVisible.last());
}

TEST_F(CloudDocsPage, ReleasedPageComesBackWithAFreshOpen)
{
    start();
    NHelioCloudDocsPage* page = addOpenPage();
    FakeBrowserWidget* browser = browserOf(page);
    const QString oldTrace = query(page->notifyUrl(), "traceId");
    page->releasePage();
    EXPECT_TRUE(page->isReleased());
    EXPECT_EQ(browser->webViewsReleased, 1);

    now = now.addSecs(5);
    page->load();
    turn();
    EXPECT_EQ(browser->webViewsMade, 2);
    const QString url = browser->loads.last().toString();
    EXPECT_EQ(url, page->notifyUrl());
    EXPECT_EQ(query(url, "from"), s("discard-page-reload"));
    EXPECT_EQ(query(url, "startTime"), s("1700000005000"));
    EXPECT_NE(query(url, "traceId"), oldTrace);
    EXPECT_EQ(query(url, "officeType"), s("w"));
    EXPECT_EQ(eventFields("memory_release_start", "action"), QStringList({s("release"), s("restart")}));
    EXPECT_EQ(eventFields("memory_release_start", "comp"), QStringList({s("word"), s("word")}));
}

TEST_F(CloudDocsPage, ReleasedPageComesBackToWhatItsAddressLedTo)
{
    start();
    NHelioCloudDocsPage* page = addPage();
    turn();
    page->notify(s("https://docs.test/office/new/w"));
    page->load();
    turn();
    FakeBrowserWidget* browser = browserOf(page);
    browser->deliverAddress(browser->currentUrl());
    browser->deliverAddress(s("https://docs.test/p/9?officeType=w"));
    page->releasePage();
    page->load();
    turn();
    EXPECT_EQ(browser->loads.last().path(), s("/p/9"));
    EXPECT_EQ(query(browser->loads.last().toString(), "from"), s("discard-page-reload"));

    // What another site shows is not the page's document.
    browser->deliverAddress(s("https://elsewhere.test/x"));
    page->releasePage();
    page->load();
    turn();
    EXPECT_EQ(browser->loads.last().path(), s("/p/9"));
}

TEST_F(CloudDocsPage, AWrongDiscardTimeIsTheDefaultOne)
{
    for (const QVariant& wrong :
         {QVariant(s("soon")), QVariant(-1), QVariant(s("9e99")), QVariant(QVariantMap())}) {
        runtime.settings.insert(s("discardPage/inactivatePageDiscardTime"), wrong);
        start();
        NHelioCloudDocsPage* page = addOpenPage();
        browserOf(page)->deliverScriptReport(s("webFileReady"),
                                             {{s("fileId"), s("7")}, {s("fileName"), s("a.docx")}});
        window->centralArea()->setCurrentPage(addPage());
        EXPECT_FALSE(page->isDiscardable()) << qPrintable(wrong.toString());
        now = now.addSecs(3599);
        EXPECT_FALSE(page->isDiscardable()) << qPrintable(wrong.toString());
        now = now.addSecs(1);
        EXPECT_TRUE(page->isDiscardable()) << qPrintable(wrong.toString());
        browserOf(page)->discardable = false;
        EXPECT_FALSE(page->isDiscardable()) << "something would be lost";
        ShellFixture::TearDown();
        ShellFixture::SetUp();
    }
}

TEST_F(CloudDocsPage, ReleasedPageThatWasNeverToldAUrlShowsTheStartPageAgain)
{
    start();
    NHelioCloudDocsPage* page = addPage();
    turn();
    page->load();
    page->releasePage();
    page->load();
    turn();
    ASSERT_EQ(browserOf(page)->loads.size(), 1);
    EXPECT_EQ(browserOf(page)->loads.last().toString(), browserOf(page)->startupUrls.first());
}

TEST_F(CloudDocsPage, ReloadsRememberTheirUrl)
{
    start();
    NHelioCloudDocsPage* page = addOpenPage();
    FakeBrowserWidget* browser = browserOf(page);
    browser->deliverAddress(s("https://elsewhere.test/x"));
    browser->deliverScriptCall(s(R"({"id":"1","name":"jsReload"})"));
    const QString first = browser->loads.last().toString();
    EXPECT_EQ(query(first, "from"), s("from"));
    EXPECT_EQ(query(first, "startTime"), s("1700000000000"));
    EXPECT_EQ(query(first, "traceId"), QString());

    now = now.addSecs(1);
    browser->deliverCrash();
    EXPECT_EQ(browser->loads.last().toString(), first);

    browser->deliverAddress(s("https://elsewhere.test/x"));
    browser->deliverCrash();
    EXPECT_EQ(query(browser->loads.last().toString(), "from"), s("cefProcessAbort"));

    browser->deliverAddress(s("https://DRIVE.test/home"));
    shell->setUser({});
    EXPECT_EQ(browser->loads.last().toString().toLower(), s("https://drive.test/home"));

    browser->deliverAddress(s("https://elsewhere.test/x"));
    shell->setUser({});
    EXPECT_EQ(query(browser->loads.last().toString(), "from"), s("loginStatusChanged"));
}

TEST_F(CloudDocsPage, TitlesCountOnceALoadFinished)
{
    start();
    NHelioCloudDocsPage* page = addPage();
    turn();
    page->notify(documentUrl);
    page->load();
    FakeBrowserWidget* browser = browserOf(page);
    EXPECT_EQ(page->pageTitle(), s("VLT Docs"));
    browser->deliverTitle(s("Loading"));
    EXPECT_EQ(page->initialSubPage()->windowTitle(), QString());
    browser->deliverLoadFinished(true);
    EXPECT_EQ(page->initialSubPage()->windowTitle(), s("Loading"));
    browser->deliverTitle(s("Plan.docx"));
    EXPECT_EQ(page->pageTitle(), s("Plan.docx"));
}

TEST_F(CloudDocsPage, ReadyFileIsRemembered)
{
    start();
    NHelioCloudDocsPage* page = addOpenPage();
    QSignalSpy ready(page, &NHelioCloudDocsPage::webFileReady);
    const QJsonObject report{
        {s("fileId"), s("9")}, {s("fileName"), s("Plan.docx")}, {s("fileType"), s("word")}};
    ASSERT_TRUE(browserOf(page)->deliverScriptReport(s("webFileReady"), report));
    EXPECT_EQ(ready.count(), 1);
    EXPECT_EQ(page->property("File_ID").toString(), s("9"));
    EXPECT_EQ(page->property("URL_File_ID").toString(), s("7"));
    EXPECT_EQ(page->getPageProperty(s("fileName")), s("Plan.docx"));
    EXPECT_EQ(eventFields("docs_cloud_open", "step"), QStringList({s("load"), s("web_file_ready")}));
    EXPECT_TRUE(
        eventFields("docs_cloud_opentime", "steps").first().endsWith(s("load_finished;web_file_ready;")));
    browserOf(page)->deliverLoadStarted();
    EXPECT_EQ(page->getPageProperty(s("fileName")), QString());
}

TEST_F(CloudDocsPage, DiscardableOnlyWhenLongInactive)
{
    start();
    NHelioCloudDocsPage* page = addOpenPage();
    addOpenPage();
    window->centralArea()->setCurrentPage(window->centralArea()->pageAt(1));
    const auto report = [&](const char* name) {
        browserOf(page)->deliverScriptReport(
            s("webFileReady"), {{s("fileId"), s("7")}, {s("fileName"), s(name)}, {s("fileType"), s("x")}});
    };
    report("Plan.docx");
    page->updateLastActiveTime();
    now = now.addSecs(3599);
    EXPECT_FALSE(page->isDiscardable());
    now = now.addSecs(1);
    EXPECT_TRUE(page->isDiscardable());
    for (const char* never : {"Plan.pdf", "Plan", ".docx", "Plan.zip"}) {
        report(never);
        EXPECT_FALSE(page->isDiscardable()) << never;
    }
    report("Plan.XLSX");
    EXPECT_TRUE(page->isDiscardable());
    browserOf(page)->active = true;
    EXPECT_FALSE(page->isDiscardable());
    browserOf(page)->active = false;
    window->centralArea()->setCurrentPage(page);
    now = now.addSecs(7200);
    EXPECT_FALSE(page->isDiscardable());
}

TEST_F(CloudDocsPage, PageMadeInAdvanceShowsABlankPageUntilItIsUsed)
{
    start();
    NHelioCloudDocsPage* page = addPage();
    turn();
    page->notify(s(
        R"({"action":"PREINIT","params":{"entry":"list","fileId":"7","fileName":"Plan.docx","localId":"L"}})"));
    FakeBrowserWidget* browser = browserOf(page);
    EXPECT_EQ(browser->startupUrls.last(), s("about:blank"));
    EXPECT_TRUE(browser->property("skipLoadingWidgetInjection").toBool());
    EXPECT_EQ(browser->webViewsMade, 1);
    EXPECT_EQ(
        page->notifyUrl(),
        s("https://docs.test/p/7?pcEnter=joinonline&openEnv=hybrid&localId=L&title=Plan.docx&officeType=w"
          "&client_proxy=false"));
    EXPECT_EQ(page->property("precreated_page_id").toString(), s("7"));

    turn();
    const QSignalSpy loaded(page, &NHelioCloudDocsPage::sigLoadFinished);
    browser->deliverLoadFinished(true);
    EXPECT_EQ(loaded.count(), 0);
    page->load();
    EXPECT_EQ(browser->webViewsMade, 1);
    EXPECT_EQ(browser->loads.last().toString(), page->notifyUrl());
    EXPECT_FALSE(browser->property("skipLoadingWidgetInjection").toBool());
    EXPECT_EQ(eventFields("docs_cloud_precreate", "init"), QStringList({s("true"), s("false")}));
    EXPECT_EQ(eventFields("docs_cloud_precreate", "used"), QStringList({s("false"), s("true")}));
}

TEST_F(CloudDocsPage, RecoveredPageShowsWhatItShowed)
{
    start();
    NHelioCloudDocsPage* page = addPage();
    turn();
    NHelioWorkAreaRecoverItem item;
    item.suffix = s("docx");
    item.params = {{s("url"), documentUrl},
                   {s("fileId"), s("7")},
                   {s("fileName"), s("Plan.docx")},
                   {s("toolBarVisible"), true}};
    EXPECT_FALSE(page->recoverFiles({}, 1, nullptr));
    page->recoverFiles({item}, 1, nullptr);
    EXPECT_EQ(page->getWorkAreaRecoverUrl(), documentUrl);
    page->load();
    turn();
    const QString url = browserOf(page)->loads.last().toString();
    EXPECT_TRUE(url.startsWith(
        documentUrl + s("&startTime=1700000000000&from=recover&officeType=w&openEnv=hybrid&client_proxy=")))
        << url.toStdString();
    EXPECT_EQ(query(url, "traceId").size(), 32);
    EXPECT_EQ(page->property("File_ID").toString(), s("7"));
    EXPECT_EQ(page->pageTitle(), s("Plan"));
    EXPECT_TRUE(page->isToolBarVisible());
}

TEST_F(CloudDocsPage, LoadErrorsAreReported)
{
    start();
    NHelioCloudDocsPage* page = addOpenPage();
    EXPECT_FALSE(browserOf(page)->deliverLoadError(s("https://docs.test/x"), s("refused"), -102));
    EXPECT_EQ(eventFields("docs_cloud_open", "error_code").last(), s("-102"));
    EXPECT_EQ(eventFields("docs_cloud_open", "browser_url").last(), s("https://docs.test/x"));
}

TEST_F(CloudDocsPage, OpenFilesOpensAPreviewOrABrowserPage)
{
    start();
    NHelioCloudDocsPage* page = addOpenPage();
    EXPECT_TRUE(page->openFiles({s("url=https://docs.test/plain&filename=a.docx")}, {}, {}, nullptr, {}));
    EXPECT_EQ(page->property("fileName").toString(), s("a.docx"));
    ASSERT_EQ(window->centralArea()->pages().size(), 2);
    EXPECT_EQ(window->centralArea()->currentPage()->widgetType(), 11);

    EXPECT_TRUE(page->openFiles({s("url=not a url&fileid=3")}, {}, {}, nullptr, {}));
    EXPECT_EQ(window->centralArea()->pages().size(), 2);
    EXPECT_FALSE(addPage()->openFiles({s("nothing")}, {}, {}, nullptr, {}));
}

TEST_F(CloudDocsPage, OddNotifyTextsAreCommands)
{
    start();
    NHelioCloudDocsPage* page = addOpenPage();
    const QString embeddedZero = s("a") + QChar(0) + s("b");
    for (const QString& text : {QString(10 * 1024 * 1024, QLatin1Char('x')), embeddedZero, s("{\"action\":"),
                                s(R"({"action":"preInit","params":{}})"), s("http"), s("http://:bad:")}) {
        page->notify(s("/recent"));
        const QString before = page->notifyUrl();
        page->notify(text);
        const QString begins = text.startsWith(s("http")) ? s("http") : s("https://docs.test/");
        EXPECT_TRUE(page->notifyUrl().startsWith(begins)) << qPrintable(text.left(30));
        EXPECT_NE(page->notifyUrl(), before) << qPrintable(text.left(30));
    }
    page->notify(s("/recent?a=b"));
    EXPECT_EQ(page->notifyUrl(),
              s("https://docs.test/recent?a=b&v=1.2&type=app&channel=chan&t=1700000000000"))
        << "nothing of the document that was shown before";
}

} // namespace
