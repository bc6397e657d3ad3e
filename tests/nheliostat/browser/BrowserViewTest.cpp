// The widget around the web view: navigation, failures, crashes, releasing, requests.
#include "BrowserFixture.h"
#include "EchoServer.h"

#include "support/LogRecorder.h"
#include "zeolite/NxWebViewContainer.h"

#include <QDropEvent>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using nheliostat::browser::BrowserEnvironment;

namespace {

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

} // namespace

TEST_F(BrowserTest, RaisesItsSignalsAndComesBackAfterRelease)
{
    EXPECT_EQ(order, (QStringList{text("webview"), text("api")}));
    EXPECT_TRUE(waitFor([&] { return order.size() == 3; })) << "the browser comes a moment later";
    EXPECT_EQ(order.last(), text("browser"));
    EXPECT_TRUE(browser->currentUrl().isEmpty());
    ASSERT_TRUE(load(docs("/")));
    EXPECT_EQ(browser->title(), text("Docs"));
    EXPECT_EQ(browser->currentUrl(), docs("/"));

    const QPointer<NxWebViewContainer> container = browser->webViewContainer();
    browser->releaseWebView();
    EXPECT_FALSE(browser->webViewContainer());
    EXPECT_TRUE(browser->viewId().isEmpty());
    browser->setStartupUrl(docs("/"));
    QSignalSpy finished(browser, &NHelioBrowserWidgetBase::loadFinished);
    browser->initWebView();
    EXPECT_TRUE(waitFor([&] { return !container; }));
    ASSERT_TRUE(finished.size() || finished.wait(patienceMs));
    EXPECT_TRUE(finished[0][0].toBool());
    EXPECT_EQ(browser->title(), text("Docs"));
    EXPECT_EQ(evaluate(text("return (await helio.call('measure', {text: 'abc'})).length")).toInt(), 3);
}

TEST_F(BrowserTest, ReportsACrashAndLoadsAgainFromItsSlot)
{
    ASSERT_TRUE(load(docs("/")));
    bool isLost = false;
    browser->evaluate(text("await new Promise(() => {})"), patienceMs,
                      [&](const BrowserControl::Evaluation& ended) { isLost = !ended.error.isEmpty(); });
    QSignalSpy finished(browser, &NHelioBrowserWidgetBase::loadFinished);
    QSignalSpy aborted(browser, &NHelioBrowserWidgetBase::cefProcessAbort);
    QObject::connect(browser, &NHelioBrowserWidgetBase::cefProcessAbort, browser,
                     [this] { browser->load(QUrl(docs("/"))); });
    ASSERT_TRUE(browser->crashRenderer());
    ASSERT_TRUE(finished.wait(patienceMs));
    EXPECT_EQ(aborted.size(), 1);
    EXPECT_TRUE(isLost);
    EXPECT_FALSE(browser->findChild<QWidget*>(text("loadErrorPanel"))->isVisible());
    EXPECT_EQ(evaluate(text("return (await helio.call('measure', {text: 'abc'})).length")).toInt(), 3);
}

TEST_F(BrowserTest, ShowsAFailedLoadAndRetries)
{
    QSignalSpy errors(browser->webViewContainer(), &NxWebViewContainer::loadError);
    auto* const panel = browser->findChild<QWidget*>(text("loadErrorPanel"));
    const struct
    {
        const char* url;
        int code;
    } cases[] = {{"http://down.test/a", -104}, {"https://down.test/b", -111}, {"file:///nowhere/at/all", -6}};
    for (const auto& c : cases) {
        errors.clear();
        EXPECT_FALSE(load(text(c.url)));
        ASSERT_EQ(errors.size(), 1) << c.url;
        EXPECT_EQ(errors[0][0].toString(), text(c.url));
        EXPECT_EQ(errors[0][2].toInt(), c.code) << qPrintable(errors[0][1].toString());
        EXPECT_TRUE(panel->isVisible());
    }
    EXPECT_FALSE(load(text("http://echo.test/missing")));
    EXPECT_FALSE(panel->isVisible()) << "a document with an error status is shown as it is";

    EXPECT_FALSE(load(text("http://down.test/")));
    site.put(text("http://down.test/"), "<title>Up</title>");
    browser->addLocalResourceCache({{text("http://down.test/"), site.handler()}});
    QSignalSpy finished(browser, &NHelioBrowserWidgetBase::loadFinished);
    panel->findChild<QPushButton*>(text("retryButton"))->click();
    ASSERT_TRUE(finished.wait(patienceMs));
    EXPECT_TRUE(finished[0][0].toBool());
    EXPECT_EQ(browser->title(), text("Up"));
    EXPECT_FALSE(panel->isVisible());

    QObject::connect(browser->webViewContainer(), &NxWebViewContainer::loadError, browser,
                     [](const QString&, const QString&, int, bool& handled) { handled = true; });
    EXPECT_FALSE(load(text("https://down.test/")));
    EXPECT_FALSE(panel->isVisible());
}

TEST_F(BrowserTest, AsksBeforeItNavigates)
{
    site.put(docs("/"), "<a id=plain href=/next>1</a><a id=blank target=_blank href=/new>2</a>"
                        "<a id=known href=weixin:x>3</a><a id=other href=strange:x>4</a>"
                        "<a id=file href=http://echo.test/a.bin>5</a>");
    site.put(docs("/next"), "<title>Next</title>");
    QStringList newPages;
    QStringList protocols;
    environment().setNewPageHandler([&](NHelioBrowserWidgetBase*, IHelioBrowserPageFactory*,
                                        const QUrl& url) { newPages << url.toString(); });
    environment().setProtocolHandler([&](NHelioBrowserWidgetBase*, const QUrl& url, bool marked) {
        protocols << url.scheme() + (marked ? text("!") : text(""));
    });
    browser->addSupportedProtocol(text("weixin"));
    browser->markProtocol(text("weixin"), true);
    ASSERT_TRUE(load(docs("/")));
    QSignalSpy links(browser, &NHelioBrowserWidgetBase::sigLinkClicked);
    QStringList asked;
    bool isStopped = true;
    QObject::connect(browser->webViewContainer(), &NxWebViewContainer::beforeBrowser, browser,
                     [&](bool& handled, const QString& url) {
                         asked << url;
                         handled = isStopped;
                     });

    for (const char* id : {"blank", "known", "other", "plain"})
        evaluate(QStringLiteral("document.getElementById('%1').click()").arg(text(id)));
    ASSERT_TRUE(waitFor([&] { return !asked.isEmpty() && !newPages.isEmpty() && !protocols.isEmpty(); }));
    EXPECT_EQ(asked, QStringList(docs("/next")));
    EXPECT_EQ(links.value(0).value(0).toString(), docs("/next"));
    EXPECT_EQ(newPages, QStringList(docs("/new")));
    EXPECT_EQ(protocols, QStringList(text("weixin!")));
    EXPECT_EQ(browser->currentUrl(), docs("/"));

    // A download is a navigation that comes to nothing: the document and its script object stay as they are.
    isStopped = false;
    QSignalSpy finished(browser, &NHelioBrowserWidgetBase::loadFinished);
    const LogRecorder log;
    evaluate(text("document.getElementById('file').click()"));
    const auto isCancelled = [&log] { return !log.lines().filter(text("download cancelled")).isEmpty(); };
    ASSERT_TRUE(waitFor(isCancelled));
    EXPECT_EQ(evaluate(text("return (await helio.call('measure', {text: 'abc'})).length")).toInt(), 3);
    EXPECT_EQ(browser->currentUrl(), docs("/"));
    browser->load(QUrl(text("http://echo.test/a.bin")));
    EXPECT_TRUE(waitFor([&] { return browser->currentUrl() == docs("/"); }));

    evaluate(text("document.getElementById('plain').click()"));
    ASSERT_TRUE(waitFor([&] { return !finished.isEmpty(); }));
    EXPECT_TRUE(finished[0][0].toBool()) << "a download is no load that ended";
    EXPECT_EQ(browser->title(), text("Next"));
    environment().setNewPageHandler({});
    environment().setProtocolHandler({});
}

TEST_F(BrowserTest, MarksItsRequestsAndReportsThem)
{
    QStringList reported;
    QObject::connect(&environment(), &BrowserEnvironment::requestFinished, browser,
                     [&](NHelioBrowserWidgetBase* by, const GatewayRequestRecord& record) {
                         if (by == browser)
                             reported << QString::fromLatin1(record.method) + QLatin1Char(' ') +
                                             record.url.toString();
                     });
    const QString agent = browser->webViewContainer()->userAgent() + text(" Sample/1.0");
    browser->webViewContainer()->setCustomHeaderHandler(
        [agent](QMap<QByteArray, QByteArray>& headers) { headers["User-Agent"] = agent.toUtf8(); });
    bool isStored = false;
    QNetworkCookie cookie("sid", "42");
    cookie.setPath(text("/"));
    browser->setCookie(QUrl(text("http://echo.test/")), cookie, [&](bool stored) { isStored = stored; });
    ASSERT_TRUE(waitFor([&] { return isStored; }));
    ASSERT_TRUE(load(text("http://echo.test/page")));
    const QString head = evaluate(text("return document.body.innerText")).toString();
    EXPECT_TRUE(head.contains(text("User-Agent: ") + agent)) << qPrintable(head);
    EXPECT_TRUE(head.contains(text("Cookie: sid=42")));
    EXPECT_FALSE(head.contains(QLatin1String(RequestGateway::viewHeader), Qt::CaseInsensitive));
    EXPECT_TRUE(waitFor([&] { return reported.contains(text("GET http://echo.test/page")); }));

    // A page's own requests to other origins need no permission because of the mark.
    ASSERT_TRUE(load(text("http://other.test/")));
    echoServer().requestLines.clear();
    EXPECT_TRUE(evaluate(text("return (await fetch('http://echo.test/cross')).ok")).toBool());
    EXPECT_EQ(echoServer().requestLines.join(QLatin1Char('|')), text("GET /cross HTTP/1.1"));
}

TEST_F(BrowserTest, CoversTheNextLoadWhenTold)
{
    auto* const cover = browser->findChild<QWidget*>(text("loadingCover"));
    QStringList seen;
    QObject::connect(browser->webViewContainer(), &NxWebViewContainer::loadStarted, cover,
                     [&] { seen << (cover->isVisible() ? text("covered") : text("open")); });
    QMetaObject::invokeMethod(browser, "injectLoadingWidgetFlag");
    ASSERT_TRUE(load(docs("/")));
    EXPECT_FALSE(cover->isVisible());
    browser->setProperty("skipLoadingWidgetInjection", true);
    QMetaObject::invokeMethod(browser, "injectLoadingWidgetFlag");
    ASSERT_TRUE(load(text("http://other.test/")));
    EXPECT_EQ(seen, (QStringList{text("covered"), text("open")}));
}

TEST_F(BrowserTest, HandsDroppedFilesOut)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(text("/tmp/a.docx")), QUrl(text("http://other.test/"))});
    QWidget* const view = browser->webViewContainer()->findChild<QWidget*>(text("webView"));
    ASSERT_TRUE(view);
    QSignalSpy entered(browser->webViewContainer(), &NxWebViewContainer::dragEnter);
    browser->webViewContainer()->enableDragDrop(true);
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    static_cast<QObject*>(view)->event(&enter);
    ASSERT_EQ(entered.size(), 1);
    EXPECT_EQ(entered[0][0].toStringList(), QStringList(text("/tmp/a.docx")));
    EXPECT_TRUE(enter.isAccepted());

    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    static_cast<QObject*>(view)->event(&drop);
    EXPECT_EQ(window.drops, 1);
}
