#include "page/NHelioCloudDocsPage.h"

#include "FakePreloadLibrary.h"
#include "base/NReadOnce.h"
#include "ncefpreload/NCefPreload.h"
#include "nrt/modules.h"
#include "page/TakeOverScript.h"
#include "proxy/NCloudDocsRecordManager.h"
#include "support/HttpStub.h"
#include "support/LogRecorder.h"
#include "support/ShellFixture.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLibrary>

namespace {

/** A page whose browser comes from a library of the test's, over a loopback documents server. */
class Preload : public ShellFixture
{
protected:
    void SetUp() override
    {
        ShellFixture::SetUp();
        nreadonce::resetForTest();
        runtime.libraryDir = directory.filePath(QStringLiteral("lib"));
        runtime.features.insert(QStringLiteral("PreCreateCloudDocsContainer"), true);
        QDir().mkpath(runtime.libraryDir + QStringLiteral("/addons/ncefpreload"));
        QFile::link(QStringLiteral(SKYLEAF_LIBRARY_DIR "/libnnetwork.so"),
                    runtime.libraryDir + QStringLiteral("/libnnetwork.so"));
        for (const char* key : {"quill", "quill_api", "quill_api_spec"})
            services.domains.insert(QLatin1String(key), server.origin());
        QFile version(directory.filePath(QStringLiteral("version")));
        version.open(QIODevice::WriteOnly);
        version.write("1.0");
        services.plugins.insert(QStringLiteral("quillword"), {directory.path(), {}});
        properties = {{ncefpreload::docFrameworkProperty, true},
                      {ncefpreload::domainProperty, server.origin().toUpper()},
                      {ncefpreload::officeTypeProperty, QStringLiteral("w")},
                      {ncefpreload::injectArrayProperty, QJsonArray{QStringLiteral("_LOCAL_CONNID")}}};
        hooks.handOver = [this](QWidget* parent, NHelioBrowserCreator* creator) {
            auto* const made = new FakeBrowserWidget(parent);
            made->setEnableStartupUrl(false); // as what is prepared in advance is
            QObject::connect(made, &NHelioBrowserWidgetBase::webviewCreated, made,
                             [this](NxWebViewContainer* container) {
                                 for (auto each = properties.begin(); each != properties.end(); ++each)
                                     container->setProperty(each.key(), each.value());
                             });
            QMetaObject::invokeMethod(
                made, [=] { creator->deliver(made); }, Qt::QueuedConnection);
            return true;
        };
    }

    void install(const char* file)
    {
        QFile::link(QLatin1String(file),
                    runtime.libraryDir + QStringLiteral("/addons/ncefpreload/libncefpreload.so"));
    }

    void begin()
    {
        start();
        host->configCentre().set(60, 53613, QJsonDocument::fromJson(switches).object());
    }

    void useHooks()
    {
        install(FULL_LIBRARY);
        begin();
        library =
            nrt::loadPluginModule(QStringLiteral("ncefpreload"), QStringLiteral("./addons/ncefpreload"));
        reinterpret_cast<UseFakePreloadHooks>(library->resolve("useHooks"))(&hooks);
    }

    void open(const QString& path = QStringLiteral("/p/7?officeType=w"))
    {
        page = new NHelioCloudDocsPage(nullptr, true, true);
        window->centralArea()->addPage(page);
        page->setProperty("fileName", QStringLiteral("Plan.docx"));
        page->notify(server.origin() + path);
        page->load();
        ASSERT_TRUE(waitUntil([this] { return page->findChild<FakeBrowserWidget*>(); }));
        browser = page->findChild<FakeBrowserWidget*>();
        ASSERT_TRUE(waitUntil([this] { return browser->container(); }));
        turn();
    }

    QStringList checks() const { return log.lines().filter(QStringLiteral("_checkPreloadDocFramework ")); }
    QByteArray userAgent() const { return browser->container()->deliverRequestHeaders().value("User-Agent"); }

    HttpStub server;
    LogRecorder log;
    QByteArray switches = R"({"DOPMasterSwitch": true, "wordDOPSwitch": true})";
    QMap<const char*, QVariant> properties;
    FakePreloadHooks hooks;
    std::shared_ptr<QLibrary> library;
    NHelioCloudDocsPage* page = nullptr;
    FakeBrowserWidget* browser = nullptr;
};

TEST_F(Preload, TheFrontEndThatFitsIsToldOnceWhatToOpen)
{
    useHooks();
    open(QStringLiteral("/p/7?officeType=w&title=it%27s'x"));
    FakeWebViewContainer& view = *browser->container();
    ASSERT_TRUE(waitUntil([&view] { return !view.scripts.isEmpty(); }));
    const QString url = takeoverscript::relativeUrl(page->notifyUrl());
    EXPECT_TRUE(url.startsWith(QStringLiteral("/p/7?officeType=w&title=it%27s%27x")) && !url.contains(u'\''));
    const QString event = QStringLiteral("\nvar _event = document.createEvent('CustomEvent');\n"
                                         "_event.initCustomEvent('ON_APP_OPENFILE_READY', true, true, {url: "
                                         "'%1'});\nwindow.dispatchEvent(_event);");
    const QString script = view.scripts.first();
    EXPECT_TRUE(
        script.startsWith(QStringLiteral("history.replaceState(null,'','%1');\nwindow.__INJECT__").arg(url)));
    EXPECT_TRUE(script.contains(QStringLiteral("\nwindow.__INJECT__._LOCAL_CONNID =\"")));
    EXPECT_TRUE(script.endsWith(event.arg(url))) << qPrintable(script);
    EXPECT_EQ(userAgent(), QByteArray("FakeBrowser/1.0 VLTQuillHybrid/1.0 PreloadDocFramework"));
    EXPECT_EQ(page->getCurrentUrl(), page->notifyUrl());
    EXPECT_EQ(browser->loadingWidgetFiles, QStringList(QStringLiteral("Plan.docx")));
    EXPECT_EQ(hooks.calls,
              QStringList(QStringLiteral("hand cloudDocsPreCreateBrowser nhelio_cloud_docs_page 2")));

    EXPECT_TRUE(browser->loads.isEmpty() && view.resourceCacheClearings == 0);
    // It opens one document; what comes next is loaded.
    page->notify(server.origin() + QStringLiteral("/p/8?officeType=w"));
    EXPECT_EQ(view.scripts.size(), 1);
    ASSERT_EQ(browser->loads.size(), 1);
    EXPECT_EQ(browser->loads.last().path(), QStringLiteral("/p/8"));
    EXPECT_FALSE(userAgent().contains("PreloadDocFramework"));
    const auto events = host->dataCollection().events();
    const bool isPosted = std::any_of(events.begin(), events.end(), [](const auto& each) {
        return each.name == QLatin1String("docs_localproxy_dop_preloaddocframework") &&
               each.fields.value(QStringLiteral("officetype")) == QLatin1String("w") &&
               each.fields.value(QStringLiteral("reportver")) == QLatin1String("1.0");
    });
    EXPECT_TRUE(isPosted);
}

TEST_F(Preload, AFrontEndThatDoesNotFitIsNotUsed)
{
    using namespace ncefpreload;
    struct Case
    {
        const char* name;
        QVariant value;
        const char* recorded;
        const char* outcome;
    };
    const Case cases[] = {
        {docFrameworkProperty, false, "", "PreloadDocFramework not enable"},
        {docFrameworkProperty, {}, "", "PreloadDocFramework not enable"},
        {domainProperty, QStringLiteral("https://other.test"), "", "preloadDomain not match"},
        {officeTypeProperty, QString(), "", "officetype not match"},
        {officeTypeProperty, QStringLiteral("W"), "", "officetype not match"},
        {frontVerProperty, QStringLiteral("2.0b"), "", "frontVer not match, record is , current is 2.0b"},
        {frontVerProperty, QStringLiteral("2.0b"), "3", "frontVer not match, record is 3, current is 2.0b"},
        {frontVerProperty, QStringLiteral("2.0b"), "2.0B", "success"},
        {frontVerProperty, QString(), "3", "success"},
    };
    useHooks();
    const auto original = properties;
    for (const Case& each : cases) {
        SCOPED_TRACE(each.outcome);
        properties = original;
        properties.insert(each.name, each.value);
        NCloudDocsRecordManager::instance()->updateEnvConfigRecord(QStringLiteral("7"),
                                                                   QLatin1String(each.recorded));
        const int before = checks().size();
        open();
        const QStringList found = checks().mid(before);
        ASSERT_FALSE(found.isEmpty());
        EXPECT_TRUE(found.first().contains(QLatin1String(each.outcome) + QStringLiteral("--")))
            << qPrintable(found.first());
        EXPECT_TRUE(found.last().contains(QStringLiteral(" already check--")));
        const bool isUsed = qstrcmp(each.outcome, "success") == 0;
        EXPECT_EQ(browser->loads.size(), isUsed ? 0 : 1);
        EXPECT_EQ(browser->container()->resourceCacheClearings, isUsed ? 0 : 1);
        EXPECT_TRUE(isUsed || userAgent().endsWith(" PreloadBrowser"));
    }
}

TEST_F(Preload, WithoutTheLocalProxyTheFrontEndIsNotEvenLookedAt)
{
    switches = "{}";
    useHooks();
    open();
    ASSERT_FALSE(checks().isEmpty());
    EXPECT_EQ(checks().filter(QStringLiteral("Framework fail--")), checks());
    EXPECT_EQ(browser->loads.size(), 1);
    EXPECT_EQ(browser->container()->resourceCacheClearings, 0);
}

class UnhelpfulLibrary : public Preload, public testing::WithParamInterface<const char*>
{
};

TEST_P(UnhelpfulLibrary, LeavesThePageItsOwnBrowser)
{
    hooks.handOver = [](QWidget*, NHelioBrowserCreator*) { return false; };
    if (qstrcmp(GetParam(), FULL_LIBRARY) == 0) {
        useHooks();
    } else {
        if (*GetParam())
            install(GetParam());
        begin();
    }
    open();
    EXPECT_EQ(browser->loads.size(), 1);
    EXPECT_TRUE(browser->deliverScriptReport(QStringLiteral("webFileReady"),
                                             {{QStringLiteral("fileType"), QStringLiteral("w")}}));
    EXPECT_FALSE(
        log.lines().filter(QStringLiteral("bTryToUsePreloadBrowser: 1, initByPreloadBrowser: 0")).isEmpty());
    if (!library)
        return;
    EXPECT_EQ(hooks.calls,
              (QStringList{QStringLiteral("hand cloudDocsPreCreateBrowser nhelio_cloud_docs_page 2"),
                           QStringLiteral("record cloudDocsPreCreateBrowser"),
                           QStringLiteral("create cloudDocsPreCreateBrowser")}));
    ASSERT_TRUE(library->unload());
    open();
    EXPECT_EQ(browser->loads.size(), 1);
    EXPECT_FALSE(library->isLoaded());
    library->load();
}

INSTANTIATE_TEST_SUITE_P(Missing, UnhelpfulLibrary, testing::Values("", EMPTY_LIBRARY, FULL_LIBRARY));

TEST_F(Preload, TheContainerIsGivenBackWithThePage)
{
    useHooks();
    const QString recover = QStringLiteral("recover cloudDocsPreCreateBrowser");
    QWidget holder;
    for (const bool isTaken : {true, false}) {
        open();
        const QPointer<FakeWebViewContainer> view = browser->container();
        hooks.takeBack = [&](NxWebViewContainer* container) {
            EXPECT_EQ(container, view);
            EXPECT_EQ(container->parentWidget(), page);
            if (isTaken)
                container->setParent(&holder);
            return isTaken;
        };
        delete page;
        turn();
        EXPECT_EQ(hooks.calls.last(), recover);
        EXPECT_EQ(view.isNull(), !isTaken);
    }
    open();
    QMetaObject::invokeMethod(QCoreApplication::instance(), "aboutToQuit");
    delete page;
    EXPECT_EQ(hooks.calls.count(recover), 2) << "nothing is given back at the end";
}

} // namespace
