#include "support/OriginServer.h"
#include "support/ProxyClient.h"
#include "support/RecordLog.h"

#include "gateway/RequestGateway.h"

#include <boost/beast/http/field.hpp>

#include <gmock/gmock.h>

#include <future>

namespace http = boost::beast::http;
using AnsweredBy = GatewayRequestRecord::AnsweredBy;

namespace {

const auto prefix = QStringLiteral("http://docs.example.test/");
const std::string url = "http://docs.example.test/page";

QVariantMap bodyOnly(const QByteArray& body)
{
    return {{QStringLiteral("resourceData"), body}};
}

NxResourceHandler answeringWith(const QByteArray& body)
{
    return [body](const IWebViewResourceProviderCallbackPtr& callback) {
        callback->complete(bodyOnly(body));
        return true;
    };
}

/** Takes every request and hands the callback to the test. */
class HeldCallbacks
{
public:
    NxResourceHandler handler()
    {
        return [this](const IWebViewResourceProviderCallbackPtr& callback) {
            m_arrived.set_value(callback);
            return true;
        };
    }
    /** Waits for the one request. */
    IWebViewResourceProviderCallbackPtr take()
    {
        IWebViewResourceProviderCallbackPtr callback = m_arrived.get_future().get();
        m_arrived = {}; // lets go of the promise's own reference
        return callback;
    }

private:
    std::promise<IWebViewResourceProviderCallbackPtr> m_arrived;
};

class GatewayHandlers : public testing::Test
{
protected:
    GatewayHandlers()
    {
        GatewayOptions options;
        options.resolve = {{QStringLiteral("docs.example.test"), m_origin.address()}};
        options.observer = m_records.observer();
        m_gateway = std::make_unique<RequestGateway>(options);
        m_view = m_gateway->openView();
    }

    void add(const NxResourceHandler& handler) { m_gateway->addHandlers(m_view, {{prefix, handler}}); }
    ProxyClient client() { return ProxyClient(*m_gateway, m_view); }

    OriginServer m_origin{answering([](const auto&) { return okText("network"); })};
    RecordLog m_records;
    std::unique_ptr<RequestGateway> m_gateway;
    QByteArray m_view;
};

} // namespace

TEST_F(GatewayHandlers, AsksForCredentialsAndGoesOnOnTheSameConnection)
{
    add(answeringWith("answer"));
    ProxyClient browser(*m_gateway, m_view);
    for (const std::string line : {"", "Proxy-Authorization: Basic c2hlbGw6d3Jvbmc=\r\n"}) {
        browser.stream().write("GET " + url + " HTTP/1.1\r\n" + line + "\r\n");
        const auto refused = browser.receive();
        EXPECT_EQ(refused.result_int(), 407u);
        EXPECT_THAT(std::string(refused[http::field::proxy_authenticate]),
                    testing::StartsWith("Basic realm="));
    }
    EXPECT_EQ(browser.get(url).body(), "answer");
    const auto records = m_records.take(3);
    EXPECT_EQ(records[0].by, AnsweredBy::Refused);
    EXPECT_EQ(records[0].viewId, QByteArray());
    EXPECT_EQ(records[2].viewId, m_view);
}

TEST_F(GatewayHandlers, RefusesWhatIsNoProxyRequest)
{
    const std::pair<std::string, unsigned> cases[] = {
        {"GET /page HTTP/1.1\r\n", 400},
        {"GET ftp://docs.example.test/ HTTP/1.1\r\n", 400},
        {"CONNECT docs.example.test HTTP/1.1\r\n", 400},
        {"POST " + url + " HTTP/1.1\r\nTransfer-Encoding: gzip\r\n", 400},
        {"POST " + url + " HTTP/1.1\r\nTransfer-Encoding: chunked\r\nContent-Length: 3\r\n", 400},
        {"this is not HTTP\r\n", 400},
        {"GET " + url + " HTTP/1.1\r\nX-Long: " + std::string(70 * 1024, 'x') + "\r\n", 431},
    };
    for (const auto& [head, status] : cases) {
        ProxyClient browser = client();
        browser.stream().write(head + browser.authorization() + "\r\n");
        EXPECT_EQ(browser.receive().result_int(), status) << head.substr(0, 100);
    }
}

TEST_F(GatewayHandlers, NewestThatTakesTheRequestAnswers)
{
    add(answeringWith("oldest"));
    add([](const auto&) -> bool { throw std::runtime_error("broken handler"); });
    add([](const IWebViewResourceProviderCallbackPtr& callback) {
        callback->complete(bodyOnly("declined all the same"));
        return false;
    });
    m_gateway->addHandlers(m_view,
                           {{QStringLiteral("http://docs.example.test/other/"), answeringWith("other")}});
    EXPECT_EQ(client().get(url).body(), "oldest");

    m_gateway->clearHandlers(m_view);
    EXPECT_EQ(client().get(url).body(), "network");
}

TEST_F(GatewayHandlers, ViewsAreKeptApart)
{
    add(answeringWith("mine"));
    const QByteArray other = m_gateway->openView();
    EXPECT_EQ(ProxyClient(*m_gateway, other).get(url).body(), "network");
    EXPECT_EQ(ProxyClient(*m_gateway).get(url).body(), "network");
    EXPECT_EQ(ProxyClient(*m_gateway, "no such view").get(url).body(), "network");
    EXPECT_EQ(client().get(url).body(), "mine");
    EXPECT_NE(other, m_view);
}

TEST_F(GatewayHandlers, TellsTheAbsoluteUrlAndRecordsTheAnswer)
{
    std::promise<QString> seen;
    add([&seen](const IWebViewResourceProviderCallbackPtr& callback) {
        seen.set_value(callback->requestUrl());
        callback->complete(bodyOnly("12345"));
        return true;
    });
    const auto response = client().get("http://DOCS.example.test:80/a%20b?q=1#f");
    EXPECT_EQ(std::string(response[http::field::content_type]), "text/html; charset=utf-8");
    EXPECT_EQ(seen.get_future().get(), QStringLiteral("http://docs.example.test/a%20b?q=1"));
    const GatewayRequestRecord record = m_records.take(1).front();
    EXPECT_EQ(record.by, AnsweredBy::Local);
    EXPECT_EQ(record.method, QByteArray("GET"));
    EXPECT_EQ(record.url, QUrl(QStringLiteral("http://docs.example.test/a%20b?q=1")));
    EXPECT_EQ(record.status, 200);
    EXPECT_EQ(record.bytes, 5);
}

TEST_F(GatewayHandlers, LateAnswersArriveFromAnyThreadAndTheFirstCounts)
{
    HeldCallbacks held;
    add(held.handler());
    ProxyClient browser = client();
    // The second request is there before the first is answered.
    browser.send("GET", url);
    browser.send("HEAD", "http://other.example.test.invalid/");
    auto callback = held.take();
    std::thread([&callback] {
        callback->complete(bodyOnly("first"));
        callback->complete(bodyOnly("second"));
    }).join();
    EXPECT_EQ(browser.receive().body(), "first");
    EXPECT_EQ(browser.receive(true).result_int(), 502u);
}

TEST_F(GatewayHandlers, ReleaseWithoutAnswerEndsInAnError)
{
    HeldCallbacks held;
    add(held.handler());
    ProxyClient browser = client();
    browser.send("GET", url);
    held.take().reset();
    const auto late = browser.receive();
    EXPECT_EQ(late.result_int(), 502u);
    EXPECT_EQ(late.body(), "released without answer");

    add([](const auto&) { return true; });
    EXPECT_EQ(browser.get(url).result_int(), 502u);
    for (const GatewayRequestRecord& record : m_records.take(2)) {
        EXPECT_EQ(record.by, AnsweredBy::Refused);
        EXPECT_EQ(record.status, 502);
    }
}

TEST_F(GatewayHandlers, EmptyPagesAndScriptsComeFromTheNetwork)
{
    add(answeringWith(QByteArray()));
    EXPECT_EQ(client().get(url, "Sec-Fetch-Mode: navigate\r\n").body(), "network");
    EXPECT_EQ(client().get(url, "Sec-Fetch-Dest: script\r\n").body(), "network");
    const auto other = client().get(url, "Sec-Fetch-Mode: cors\r\n");
    EXPECT_EQ(other.result_int(), 200u);
    EXPECT_EQ(other.body(), "");
    EXPECT_EQ(m_records.take(2)[0].by, AnsweredBy::Network);
}

TEST_F(GatewayHandlers, TheBrowserKeepsScriptsOnlyWhileTheyStayTheSame)
{
    QByteArray script = "let version = 1;";
    add([&script](const IWebViewResourceProviderCallbackPtr& callback) {
        callback->complete(bodyOnly(script));
        return true;
    });
    const std::string app = "http://docs.example.test/js/app.js";
    ProxyClient browser = client();
    const auto first = browser.get(app);
    EXPECT_EQ(std::string(first[http::field::cache_control]), "no-cache");
    const std::string known = "If-None-Match: \"x\", " + std::string(first[http::field::etag]) + "\r\n";
    const auto unchanged = browser.get(app, known);
    EXPECT_EQ(unchanged.result_int(), 304u);
    EXPECT_EQ(unchanged.body(), "");
    EXPECT_EQ(std::string(unchanged[http::field::etag]), std::string(first[http::field::etag]));
    script[14] = '2'; // in place: the next answer may well lie at the same address
    EXPECT_EQ(browser.get(app, known).body(), "let version = 2;");

    const std::pair<const char*, const char*> others[] = {
        {"js/app.0123abcd.js", "public, max-age=31536000, immutable"},
        {"p/100001", "no-store"},
        {"api/v3/office/files", "no-store"},
    };
    for (const auto& [path, caching] : others) {
        const auto answer = browser.get("http://docs.example.test/" + std::string(path));
        EXPECT_EQ(std::string(answer[http::field::cache_control]), caching) << path;
        EXPECT_EQ(answer.count(http::field::etag), 0u) << path;
    }
    EXPECT_EQ(std::string(browser.get("http://docs.example.test/office-config/1")[http::field::content_type]),
              "application/json");
    browser.send("POST", app, {}, "x");
    EXPECT_EQ(std::string(browser.receive()[http::field::cache_control]), "no-store");
    script.clear();
    EXPECT_EQ(
        std::string(browser.get("http://docs.example.test/js/app.0123abcd.js")[http::field::cache_control]),
        "no-store");
}

TEST_F(GatewayHandlers, OwnCacheControlCountsWhereKeepingIsSafe)
{
    add([](const IWebViewResourceProviderCallbackPtr& callback) {
        const QVariantMap headers = {{QStringLiteral("cache-control"), QStringLiteral("max-age=60")},
                                     {QStringLiteral("ETag"), QByteArrayLiteral("\"own\"")}};
        callback->complete({{QStringLiteral("headerMap"), headers},
                            {QStringLiteral("resourceData"), QByteArrayLiteral("body")}});
        return true;
    });
    ProxyClient browser = client();
    const auto own = browser.get("http://docs.example.test/app.0123abcd.js");
    EXPECT_EQ(std::string(own[http::field::cache_control]), "max-age=60");
    EXPECT_EQ(own.count(http::field::cache_control), 1u);
    EXPECT_EQ(std::string(own[http::field::etag]), "\"own\"");
    const auto replaced = browser.get("http://docs.example.test/api/files");
    EXPECT_EQ(std::string(replaced[http::field::cache_control]), "no-store");
    EXPECT_EQ(replaced.count(http::field::etag), 0u);
}

TEST_F(GatewayHandlers, RemovalLetsTakenRequestsFinish)
{
    HeldCallbacks held;
    add(held.handler());
    ProxyClient browser = client();
    browser.send("GET", url);
    auto callback = held.take();
    m_gateway->removeHandlers(m_view, {prefix});
    EXPECT_EQ(client().get(url).body(), "network");
    callback->complete(bodyOnly("taken before"));
    EXPECT_EQ(browser.receive().body(), "taken before");
}

TEST_F(GatewayHandlers, ClosingTheViewEndsItsWaitingRequests)
{
    HeldCallbacks held;
    add(held.handler());
    ProxyClient browser(*m_gateway); // names a view per request
    const auto viewLine = [](const QByteArray& view) {
        return std::string(RequestGateway::viewHeader) + ": " + view.toStdString() + "\r\n";
    };
    browser.send("GET", url, viewLine(m_view));
    auto callback = held.take();
    m_gateway->closeView(m_view);
    EXPECT_EQ(browser.receive().result_int(), 502u);

    // The answer to the ended request must not become that of the next one on the connection.
    HeldCallbacks heldNext;
    const QByteArray next = m_gateway->openView();
    m_gateway->addHandlers(next, {{prefix, heldNext.handler()}});
    browser.send("GET", url, viewLine(next));
    auto nextCallback = heldNext.take();
    callback->complete(bodyOnly("too late"));
    nextCallback->complete(bodyOnly("in time"));
    EXPECT_EQ(browser.receive().body(), "in time");
}

TEST_F(GatewayHandlers, BrowserMayLeaveBeforeTheAnswer)
{
    HeldCallbacks held;
    add(held.handler());
    {
        ProxyClient browser = client();
        browser.send("GET", url);
    }
    auto callback = held.take();
    EXPECT_EQ(m_records.take(1).front().status, 0);
    callback->complete(bodyOnly("nobody there"));
    callback.reset();
    m_gateway->clearHandlers(m_view);
    EXPECT_EQ(client().get(url).body(), "network");
}

TEST_F(GatewayHandlers, DestructionEndsWaitingRequestsAndOutlivedCallbacksAreHarmless)
{
    HeldCallbacks held;
    add(held.handler());
    ProxyClient browser = client();
    browser.send("GET", url);
    auto callback = held.take();
    m_gateway.reset();
    EXPECT_TRUE(browser.stream().ends());
    callback->complete(bodyOnly("too late"));
    EXPECT_EQ(callback->requestUrl().toStdString(), url);
}

TEST_F(GatewayHandlers, DestructionWhileAnswersPourIn)
{
    std::vector<std::thread> answering;
    std::mutex mutex;
    add([&](const IWebViewResourceProviderCallbackPtr& callback) {
        const std::lock_guard lock(mutex);
        answering.emplace_back([callback] { callback->complete(bodyOnly(QByteArray(100000, 'x'))); });
        return true;
    });
    std::vector<std::thread> browsers;
    std::atomic<int> answered{0};
    for (int i = 0; i < 4; ++i) {
        browsers.emplace_back([&] {
            try {
                ProxyClient browser = client();
                for (;; ++answered)
                    browser.get(url);
            } catch (const boost::system::system_error&) {
                // The gateway has gone.
            }
        });
    }
    while (answered < 50)
        std::this_thread::yield();
    m_gateway->closeView(m_view);
    m_gateway.reset();
    for (std::thread& thread : browsers)
        thread.join();
    for (std::thread& thread : answering)
        thread.join();
}

TEST_F(GatewayHandlers, UnreadBodiesDoNotDisturbTheNextRequest)
{
    add(answeringWith("answer"));
    ProxyClient browser = client();
    browser.send("POST", url, {}, std::string(300 * 1024, 'b'));
    EXPECT_EQ(browser.receive().body(), "answer");
    browser.send("POST", url, "Transfer-Encoding: chunked\r\n");
    EXPECT_EQ(browser.receive().body(), "answer");
    browser.stream().write("5\r\nhello\r\n0\r\n\r\n");
    EXPECT_EQ(browser.get(url).body(), "answer");

    // This body is never sent, because the browser waits to be asked for it.
    browser.send("POST", url, "Expect: 100-continue\r\nContent-Length: 5\r\n");
    EXPECT_EQ(browser.receive().body(), "answer");
    EXPECT_TRUE(browser.stream().ends());
}

TEST_F(GatewayHandlers, BodiesLargerThanAnySocketBufferArriveWhole)
{
    QByteArray body(24 * 1024 * 1024, Qt::Uninitialized);
    for (int i = 0; i < body.size(); ++i)
        body[i] = static_cast<char>(i * 31 + i / 4096);
    add(answeringWith(body));
    ProxyClient browser = client();
    for (int i = 0; i < 2; ++i)
        EXPECT_TRUE(browser.get(url).body() == body.toStdString());
}
