#include "bridge/CloudDocsPages.h"
#include "bridge/DocsLinks.h"
#include "bridge/OpenArguments.h"

#include "BridgeFixture.h"

#include "nheliostat/NHelioPluginWidgetFactory.h"
#include "nheliostat/NHelioSubPage.h"

namespace {

/** A page of one document, "7" at first. */
class DocumentPage final : public NHelioVltPage, public ICloudDocsPreviewPage
{
public:
    explicit DocumentPage(int type, QWidget* parent = nullptr)
        : NHelioVltPage(parent)
        , m_type(type)
    {
    }
    int widgetType() const override { return m_type; }
    QString pageTitle() const override { return {}; }
    NHelioSubPage* createSubPage(NHelioSubPages* subPages) override { return new NHelioSubPage(subPages); }
    void notify(const QString& text) override { notified << text; }
    void load() override {}
    NHelioSubPage* findSubPage(const QMap<QString, QString>& parameters, bool) const override
    {
        const bool isIt = m_type != previewPageType && parameters.value(QStringLiteral("fileId")) == openFile;
        return isIt ? initialSubPage() : nullptr;
    }
    bool closeSubPage(NHelioSubPage*) override
    {
        openFile.clear();
        return true;
    }
    bool openLocalFiles(const QStringList& args, const QStringList&, NHelioProxyStrategy, NHelioSubPage*,
                        const QVariantMap&, bool) override
    {
        notified << args;
        return true;
    }
    void setSuffix(const QString& suffix) override { taken << suffix; }
    void setDocumentTitle(const QString& title) override { taken << title; }

    QStringList notified;
    QStringList taken; //!< suffixes and titles
    QString openFile = QStringLiteral("7");

private:
    const int m_type;
};

class PageType final : public NHelioPluginWidgetFactoryItemBase
{
public:
    explicit PageType(int type)
        : NHelioPluginWidgetFactoryItemBase(type)
    {
        NHelioPluginWidgetFactory::registerPagePlugin(this);
    }
    ~PageType() override { NHelioPluginWidgetFactory::unregisterPagePlugin(this); }
    QWidget* createWidget(QWidget* parent) override { return new DocumentPage(type(), parent); }
    bool hasMethod(const QString&) const override { return false; }
};

class OpenFiles : public BridgeFixture
{
protected:
    void SetUp() override
    {
        BridgeFixture::SetUp();
        start();
    }

    ShellCentralArea& area() { return application->window->area(); }
    DocumentPage* addPage(int type)
    {
        auto* page = static_cast<DocumentPage*>(area().addPage(type, {}, {}));
        EXPECT_NE(page, nullptr);
        return page;
    }
    /** The page that the bridge belongs to, in the window. */
    DocumentPage* standInPage()
    {
        DocumentPage* page = addPage(1);
        page->openFile.clear();
        page->setProperty("File_ID", QStringLiteral("5"));
        container->setParent(page);
        bridge->setPage(page);
        return page;
    }

    PageType cloudPages{1};
    PageType previewPages{previewPageType};
    PageType flowPages{21};
    PageType processPages{27};
};

TEST_F(OpenFiles, AFileTakesTheTabOfItsPageOrANewOne)
{
    struct Case
    {
        const char* arguments;
        bool isSwitch;
        const char* parameters;
    };
    const Case cases[] = {
        {R"({"fileid":"9","fileName":"a.docx","csource":"x","openSrc":"team","pageIdxInfo":"3","supportNoLand":true})",
         true,
         R"({"fileid":"9","fileName":"a.docx","doctype":"team","csource":"clouddriver_x","from":"clouddriver",
             "supportNoLand":true,"pageIdxInfo":"3","isSwitch":true})"},
        {R"({"openFrom":"RightMenu","from":"%1 f"})", false,
         R"({"fileid":"-1","fileName":"","doctype":"","csource":"clouddriver_","from":"%1 f","isSaveAs":true})"},
        {R"({"fileid":"7","openByNewTab":true,"pageIdxInfo":"3"})", false,
         R"({"fileid":"7","fileName":"","doctype":"","csource":"clouddriver_","from":"clouddriver","isSaveAs":true})"},
    };
    addPage(2 - 1); // holds document 7
    for (const Case& c : cases) {
        DocumentPage* page = standInPage();
        application->opened.clear();
        application->openedIn.clear();
        EXPECT_EQ(call("openFile", c.arguments), json(R"({"callstatus":"ok","result":true})"));
        ASSERT_EQ(application->opened.size(), 1) << c.arguments;
        EXPECT_EQ(QJsonObject::fromVariantMap(application->opened.first()), json(c.parameters));
        EXPECT_EQ(application->openedIn.first(), c.isSwitch ? application->window.get() : nullptr);
        EXPECT_EQ(area().pages().contains(page), !c.isSwitch);
        EXPECT_EQ(page->property("File_ID").toString(), QString());
        bridge->setPage(nullptr);
        container->setParent(application->window.get());
        delete page;
    }
    EXPECT_EQ(application->reports.first(), QStringLiteral(" clouddriver_x openStart 1"));
}

TEST_F(OpenFiles, AnOpenDocumentIsShownInsteadOfOpenedAgain)
{
    standInPage();
    addPage(1);
    call("openFileEx", R"({"fileid":"7"})");
    addPage(previewPageType)->setProperty("File_ID", QStringLiteral("8"));
    call("openFile", R"({"fileid":"8"})");
    EXPECT_EQ(area().currentPage()->property("File_ID").toString(), QStringLiteral("8"));
    EXPECT_TRUE(application->opened.isEmpty());
}

TEST_F(OpenFiles, TheCloudShowsADocumentInAPreviewPage)
{
    call("openFileByCloud", R"({"fileid":"12","fileName":"b.xlsx","csource":"s"})");
    ASSERT_EQ(area().pages().size(), 1);
    auto* page = static_cast<DocumentPage*>(area().pages().first());
    EXPECT_EQ(page->notified,
              (QStringList{QStringLiteral("https://docs.test/p/12?pcEnter=appcenter&from=clouddriver_s")}));
    EXPECT_EQ(page->property("File_ID").toString(), QStringLiteral("12"));
    EXPECT_EQ(page->property("fileName").toString(), QStringLiteral("b.xlsx"));
    call("openFileByCloud", R"({"fileid":"12"})");
    EXPECT_EQ(area().pages().size(), 1) << "found again";
    call("openFileByCloud", R"({"openUrl":"https://docs.test/x"})");
    ASSERT_EQ(area().pages().size(), 2);
    EXPECT_FALSE(area().pages().last()->property("File_ID").isValid());
}

TEST_F(OpenFiles, APreviewPageIsNamedAfterItsFile)
{
    const QString url = QStringLiteral("https://docs.test/x");
    const QString path = QStringLiteral("/d.e/a.b.xlsx");
    const auto load = [&](const QString& openUrl, const QString& suffix, const QString& file) {
        DocumentPage* page = addPage(previewPageType);
        const bool ok = clouddocspages::loadPreviewPage(page, openUrl, suffix, QStringLiteral("5"), file, {},
                                                        false, false);
        EXPECT_EQ(ok, !page->notified.isEmpty());
        return page;
    };
    const DocumentPage* page = load(url, QStringLiteral("xlsx"), path);
    EXPECT_EQ(page->taken, (QStringList{QStringLiteral("xlsx"), QStringLiteral("a")}));
    EXPECT_EQ(page->property("fileName").toString(), QStringLiteral("a.b.xlsx"));
    EXPECT_EQ(page->property("File_Url").toString(), url);
    EXPECT_EQ(page->notified, (QStringList{url, QStringLiteral("setToolBar=0")}));
    page = load({}, {}, path);
    EXPECT_TRUE(page->taken.isEmpty());
    EXPECT_EQ(page->notified.value(0), QStringLiteral("https://docs.test/p/5"));
    EXPECT_FALSE(load(QStringLiteral("no host"), {}, {})->property("File_ID").isValid());
}

TEST_F(OpenFiles, OnlineDocumentsSayWhyTheyDoNotOpen)
{
    const char* const cases[][2] = {{"{}", "args isEmpty"},
                                    {R"({"fileId":"1"})", "url isEmpty"},
                                    {R"({"url":"no host"})", "url invalid"},
                                    {R"({"url":7})", "url invalid"},
                                    {R"({"url":"https://d.test/p/1"})", "url query(officeType) isEmpty"}};
    for (const auto& [arguments, error] : cases) {
        const QJsonObject reply = call("openDocsOnlineFile", arguments);
        EXPECT_EQ(reply.value(QStringLiteral("callstatus")).toString(), QStringLiteral("error"));
        EXPECT_EQ(reply.value(QStringLiteral("errormsg")).toString(), QLatin1String(error));
    }
    EXPECT_TRUE(area().pages().isEmpty());

    setNow(QDateTime::fromMSecsSinceEpoch(4321));
    EXPECT_EQ(call("openDocsOnlineFile",
                   R"({"fileId":"6","url":"https://d.test/p/6?officeType=w","fileName":"n"})"),
              json(R"({"callstatus":"ok","errormsg":""})"));
    auto* page = static_cast<DocumentPage*>(area().currentPage());
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(
        page->notified,
        (QStringList{QStringLiteral("suffix:w"),
                     QStringLiteral("https://d.test/p/6?officeType=w&localId=&openEnv=hybrid&startTime=4321&"
                                    "newFile=true&from=skyleaf-openDocsOnlineFile")}));
    EXPECT_EQ(page->property("File_ID").toString(), QStringLiteral("6"));
    EXPECT_EQ(call("openDocsOnlineFile", R"({"url":"https://d.test/p/6?officeType="})"),
              json(R"({"callstatus":"ok","errormsg":""})"))
        << "present, though empty";
    bridge->setParent(nullptr); // no window any more
    EXPECT_EQ(call("openDocsOnlineFile", R"({"url":"https://d.test/p/6?officeType=w"})")
                  .value(QStringLiteral("errormsg"))
                  .toString(),
              QStringLiteral("internal error"));
    delete bridge;
}

TEST_F(OpenFiles, ProcessPagesGetTheirFileOrPlace)
{
    standInPage();
    EXPECT_EQ(call("openProcessOnFile", R"({"fileid":"3","groupid":"g","fileName":"x.pom"})"),
              json(R"({"result":true})"));
    EXPECT_EQ(call("openProcessOnFile", R"({"fileName":"x.pom"})"), json(R"({"result":false})"));
    call("openProcessOnPage", R"({"type":"map","groupid":"h"})");
    call("openProcessOnPage");
    const auto pages = area().pages();
    ASSERT_EQ(pages.size(), 3);
    EXPECT_EQ(pages[1]->widgetType(), 21);
    EXPECT_EQ(static_cast<DocumentPage*>(pages[1])->notified,
              (QStringList{QStringLiteral("3"), QStringLiteral("g")}));
    EXPECT_EQ(pages[2]->widgetType(), 27);
    EXPECT_EQ(static_cast<DocumentPage*>(pages[2])->notified, QStringList(QStringLiteral("&h&0")));
}

TEST_F(OpenFiles, AStoppedCollaborationTurnsItsPageIntoTheLocalDocument)
{
    DocumentPage* page = standInPage();
    Q_EMIT application->cloud.sigNotifyStopCollaboration(json(R"({"fileId":"6"})"));
    EXPECT_FALSE(application->cloud.completeMask) << "another file";
    Q_EMIT application->cloud.sigNotifyStopCollaboration(json(R"({"fileId":"5","fileName":"n"})"));
    ASSERT_TRUE(application->cloud.completeMask);
    application->cloud.completeMask();
    ASSERT_EQ(application->opened.size(), 1);
    EXPECT_EQ(QJsonObject::fromVariantMap(application->opened.first()),
              json(R"({"fileid":"5","fileName":"n","from":"nvltcloudmodule"})"));
    EXPECT_FALSE(area().pages().contains(page));
    delete page;
    application->cloud.completeMask(); // the page is gone: nothing happens
    EXPECT_EQ(application->opened.size(), 1);
}

TEST_F(OpenFiles, ClosingACooperationSaysWhatCameOfIt)
{
    QStringList closed;
    QObject::connect(bridge, &NHelioCommonJSAPI::sig_closeCooperationResult, [&](const QString& id, bool ok) {
        closed << id + (ok ? QLatin1String("+") : QLatin1String("-"));
    });
    int ready = 0;
    QObject::connect(bridge, &NHelioCommonJSAPI::sig_shareDlgReady, [&] { ++ready; });
    const auto result = [&](const char* arguments) {
        return call("notifyCloseCooperationResult", arguments).value(QStringLiteral("result")).toString();
    };
    EXPECT_EQ(result("{}"), QStringLiteral("file id is empty"));
    EXPECT_TRUE(closed.isEmpty());
    DocumentPage* document = addPage(1);
    EXPECT_EQ(result(R"({"fileId":"7"})"), QStringLiteral("close openedFile success"));
    EXPECT_TRUE(document->openFile.isEmpty());
    EXPECT_EQ(result(R"({"fileId":"7"})"), QStringLiteral("close openedFile faile"));
    EXPECT_EQ(ready, 2);
    EXPECT_EQ(result(R"({"fileId":"7","closeCooperation":true})"), QString());
    EXPECT_EQ(ready, 3) << "no page to close";
    standInPage();
    EXPECT_EQ(result(R"({"fileId":"7","closeCooperation":true})"), QString());
    EXPECT_EQ(ready, 3);
    EXPECT_EQ(closed, (QStringList{QStringLiteral("7-"), QStringLiteral("7-"), QStringLiteral("7+"),
                                   QStringLiteral("7+")}));
}

TEST_F(OpenFiles, LinksOfTheSiteNameTheirDocument)
{
    const char* const cases[][2] = {{"https://docs.test/p/12?x=1", "12"},
                                    {"https://DOCS.test/P/12/", "12"},
                                    {"docs.test//p/12", ""},
                                    {"https://docs.test/l/12", ""},
                                    {"https://docs.test/p/12a", ""},
                                    {"https://docs.test/p/-3", ""},
                                    {"https://evil.test/p/12", ""},
                                    {"", ""}};
    for (const auto& [url, id] : cases)
        EXPECT_EQ(docslinks::fileIdFromDocsUrl(QLatin1String(url)), QLatin1String(id)) << url;
    EXPECT_EQ(virtualTypeOf(QStringLiteral("MINE")), 0);
    EXPECT_EQ(virtualTypeOf(QStringLiteral("received")), 3);
    EXPECT_EQ(virtualTypeOf(QString()), -1);
}

} // namespace
