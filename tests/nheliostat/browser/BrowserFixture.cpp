#include "BrowserFixture.h"

#include "EchoServer.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>
#include <QVBoxLayout>

using namespace nheliostat::browser;

namespace {

EchoServer* theEchoServer = nullptr;
BrowserEnvironment* theEnvironment = nullptr;

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    BrowserEnvironment::prepareProcess(true);
    QApplication application(argc, argv);
    EchoServer server;
    theEchoServer = &server;
    const QString serverAddress = QStringLiteral("127.0.0.1:%1").arg(server.serverPort());
    BrowserEnvironment::Setup setup;
    setup.scriptOrigins = QStringList{QStringLiteral("https://docs.skyleaf.test/")};
    setup.interceptedHosts = QStringList{QStringLiteral("docs.skyleaf.test")};
    setup.resolve = {{QStringLiteral("echo.test"), serverAddress},
                     {QStringLiteral("down.test"), QStringLiteral("127.0.0.1:9")}};
    setup.headless = true;
    BrowserEnvironment environment(setup);
    theEnvironment = &environment;
    return RUN_ALL_TESTS();
}

void LocalSite::put(const QString& url, const QByteArray& body)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_documents.insert(url, body);
}

NxResourceHandler LocalSite::handler()
{
    return [this](const IWebViewResourceProviderCallbackPtr& request) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = m_documents.constFind(request->requestUrl());
        if (found == m_documents.constEnd())
            return false;
        request->complete({{QStringLiteral("resourceData"), *found}});
        return true;
    };
}

void SampleScriptObject::measure(NxWebViewJSContext& context)
{
    called << context.method();
    context.reply()["length"] = context.getValue(QStringLiteral("text")).toString().size();
}

void SampleScriptObject::produce(NxWebViewJSContext& context)
{
    const auto size = context.getValue(QStringLiteral("size")).toUInt();
    context.reply()["text"] = std::string(size, 'x');
}

void SampleScriptObject::act(NxWebViewJSContext&)
{
    action();
}

void SampleScriptObject::later(NxWebViewJSContext& context)
{
    waiting << context;
}

BrowserTest::BrowserTest()
    : browser(
          new WebEngineBrowserWidget(environment(), QStringLiteral("id"), QStringLiteral("name"), &window))
{
    site.put(docs("/"), "<title>Docs</title><p id=p>docs</p>");
    site.put(QStringLiteral("http://other.test/"), "<title>Other</title>");
    browser->addLocalResourceCache({{QStringLiteral("https://docs.skyleaf.test/"), site.handler()},
                                    {QStringLiteral("http://other.test/"), site.handler()}});
    QObject::connect(browser, &NHelioBrowserWidgetBase::webviewCreated, &window,
                     [this] { order << QStringLiteral("webview"); });
    QObject::connect(browser, &NHelioBrowserWidgetBase::browserCreated, &window,
                     [this] { order << QStringLiteral("browser"); });
    QObject::connect(browser, &NHelioBrowserWidgetBase::creatingApi, &window,
                     [this](NxWebViewContainer* container, QObject** object) {
                         order << QStringLiteral("api");
                         api = new SampleScriptObject(container);
                         *object = api;
                     });
    auto* const column = new QVBoxLayout(&window);
    column->addWidget(browser);
    window.resize(800, 600);
    window.show();
    browser->initWebView();
}

BrowserTest::~BrowserTest() = default;

BrowserEnvironment& BrowserTest::environment()
{
    return *theEnvironment;
}

EchoServer& BrowserTest::echoServer()
{
    return *theEchoServer;
}

bool BrowserTest::load(const QString& url)
{
    QSignalSpy finished(browser, &NHelioBrowserWidgetBase::loadFinished);
    browser->load(QUrl(url));
    return finished.wait(patienceMs) && finished[0][0].toBool();
}

QJsonValue BrowserTest::evaluate(const QString& code, int timeoutMs)
{
    bool isDone = false;
    BrowserControl::Evaluation outcome;
    browser->evaluate(code, timeoutMs, [&](const BrowserControl::Evaluation& ended) {
        EXPECT_FALSE(isDone);
        isDone = true;
        outcome = ended;
    });
    if (!waitFor([&] { return isDone; }))
        ADD_FAILURE() << "the evaluation never ended";
    return outcome.error.isEmpty() ? outcome.value : QJsonValue(QStringLiteral("error: ") + outcome.error);
}

bool BrowserTest::waitFor(const std::function<bool()>& condition)
{
    QElapsedTimer waited;
    waited.start();
    while (!condition() && waited.elapsed() < patienceMs)
        QTest::qWait(2);
    return condition();
}

QString BrowserTest::docs(const char* path)
{
    return QStringLiteral("https://docs.skyleaf.test") + QLatin1String(path);
}
