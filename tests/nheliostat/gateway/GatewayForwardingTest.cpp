#include "support/OriginServer.h"
#include "support/ProxyClient.h"
#include "support/RecordLog.h"

#include "gateway/RequestGateway.h"

#include <boost/beast/http/error.hpp>
#include <boost/beast/http/field.hpp>

#include <gmock/gmock.h>

#include <future>

namespace http = boost::beast::http;
using AnsweredBy = GatewayRequestRecord::AnsweredBy;

namespace {

const std::string url = "http://origin.example.test/path?q=1";

/** A gateway whose "origin.example.test" is the scripted server. */
struct Forwarding
{
    explicit Forwarding(OriginServer::Serve serve)
        : origin(std::move(serve))
    {
        GatewayOptions options;
        options.resolve = {{QStringLiteral("origin.example.test"), origin.address()},
                           {QStringLiteral("nobody.example.test:80"), QStringLiteral("127.0.0.1:1")},
                           {QStringLiteral("broken.example.test"), QStringLiteral("no address")}};
        options.observer = records.observer();
        gateway = std::make_unique<RequestGateway>(options);
    }
    ProxyClient client() { return ProxyClient(*gateway, "view"); }

    OriginServer origin;
    RecordLog records;
    std::unique_ptr<RequestGateway> gateway;
};

} // namespace

TEST(GatewayForwarding, EveryWayToEndABodyWorksAndKeepsTheConnection)
{
    struct Case
    {
        const char* method;
        std::string response;
        unsigned status;
        std::string body;
    };
    const Case cases[] = {
        {"GET", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello", 200, "hello"},
        {"GET",
         "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nhel\r\n2;x=y\r\nlo\r\n0\r\nT: 1\r\n\r\n",
         200, "hello"},
        {"GET", "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nuntil the end", 200, "until the end"},
        {"GET", "HTTP/1.0 200 OK\r\n\r\nold", 200, "old"},
        {"GET", "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n", 200, ""},
        {"HEAD", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n", 200, ""},
        {"GET", "HTTP/1.1 204 No Content\r\n\r\n", 204, ""},
        {"GET", "HTTP/1.1 304 Not Modified\r\nContent-Length: 5\r\nETag: \"x\"\r\n\r\n", 304, ""},
        {"GET",
         "HTTP/1.1 103 Early Hints\r\nLink: x\r\n\r\nHTTP/1.1 404 Not Found\r\nContent-Length: 2\r\n\r\nno",
         404, "no"},
    };
    std::atomic<std::size_t> next{0};
    Forwarding forwarding([&](OriginConnection& connection) {
        if (connection.readRequest())
            connection.write(cases[next].response);
    });
    ProxyClient browser = forwarding.client();
    for (; next < std::size(cases); ++next) {
        const Case& expected = cases[next];
        browser.send(expected.method, url);
        const bool toHead = std::string("HEAD") == expected.method;
        auto response = browser.receive(toHead);
        if (response.result_int() == 103)
            response = browser.receive();
        EXPECT_EQ(response.result_int(), expected.status) << expected.response;
        EXPECT_EQ(response.body(), expected.body) << expected.response;
    }
    const auto records = forwarding.records.take(std::size(cases));
    EXPECT_EQ(records[1].by, AnsweredBy::Network);
    EXPECT_EQ(records[1].bytes, 5);
    EXPECT_EQ(records[8].status, 404);
}

TEST(GatewayForwarding, SendsOriginFormWithoutItsOwnFields)
{
    std::promise<OriginConnection::Request> seen;
    Forwarding forwarding(answering([&](const auto& request) {
        seen.set_value(request);
        return std::string("HTTP/1.1 200 OK\r\nContent-Length: 0\r\nKeep-Alive: 5\r\nX-Kept: 1\r\n"
                           "Proxy-Authenticate: Basic\r\n\r\n");
    }));
    const auto response = forwarding.client().get(url, "Cookie: a=b\r\nConnection: X-Drop\r\nX-Drop: 1\r\n");
    const auto request = seen.get_future().get();
    EXPECT_EQ(request.target(), "/path?q=1");
    EXPECT_EQ(request[http::field::host], "origin.example.test");
    EXPECT_EQ(request[http::field::cookie], "a=b");
    EXPECT_EQ(std::distance(request.begin(), request.end()), 2);
    EXPECT_EQ(response["X-Kept"], "1");
    EXPECT_EQ(response.count("Keep-Alive") + response.count("Proxy-Authenticate"), 0u);
}

TEST(GatewayForwarding, RequestBodiesStreamInBothFramings)
{
    Forwarding forwarding(answering([](const auto& request) {
        const bool chunked = request.find(http::field::transfer_encoding) != request.end();
        return okText((chunked ? "chunked " : "length ") + request.body());
    }));
    ProxyClient browser = forwarding.client();
    const std::string big(3 * 1024 * 1024, 'u');
    browser.send("POST", url, {}, big);
    EXPECT_TRUE(browser.receive().body() == "length " + big);
    browser.send("PUT", url, "Transfer-Encoding: chunked\r\n");
    browser.stream().write("5\r\nhello\r\n");
    browser.stream().write("6\r\n world\r\n0\r\n\r\n");
    EXPECT_EQ(browser.receive().body(), "chunked hello world");
    EXPECT_EQ(forwarding.origin.connections(), 1);
}

TEST(GatewayForwarding, ContinueIsTheServersToSay)
{
    Forwarding forwarding([](OriginConnection& connection) {
        const auto head = connection.readHead();
        ASSERT_TRUE(head);
        EXPECT_EQ((*head)[http::field::expect], "100-continue");
        connection.write("HTTP/1.1 100 Continue\r\n\r\n");
        EXPECT_EQ(connection.stream().read(5), "hello");
        connection.write(okText("got it"));
    });
    ProxyClient browser = forwarding.client();
    browser.send("POST", url, "Expect: 100-continue\r\nContent-Length: 5\r\n");
    EXPECT_EQ(browser.receive().result_int(), 100u);
    browser.stream().write("hello");
    EXPECT_EQ(browser.receive().body(), "got it");
}

TEST(GatewayForwarding, RefusedUploadsStillGetTheirAnswer)
{
    Forwarding forwarding([](OriginConnection& connection) {
        connection.readHead();
        connection.write("HTTP/1.1 413 Too Large\r\nContent-Length: 3\r\nConnection: close\r\n\r\nbig");
        connection.stream().readToEnd();
    });
    ProxyClient browser = forwarding.client();
    browser.send("POST", url, "Content-Length: 1000000\r\n");
    const auto response = browser.receive();
    EXPECT_EQ(response.result_int(), 413u);
    EXPECT_EQ(response.body(), "big");
    EXPECT_TRUE(browser.stream().ends());
}

TEST(GatewayForwarding, ConnectionsAreReusedAndStaleOnesReplaced)
{
    Forwarding lasting(answering([](const auto&) { return okText("again"); }));
    for (int i = 0; i < 3; ++i) {
        ProxyClient browser = lasting.client();
        EXPECT_EQ(browser.get(url).body(), "again");
        EXPECT_EQ(browser.get(url).body(), "again");
    }
    EXPECT_LE(lasting.origin.connections(), 2); // one for each gateway thread

    // Closes on the second request of a connection without a word.
    Forwarding fickle([](OriginConnection& connection) {
        connection.readRequest();
        connection.write(okText("once"));
        connection.readRequest();
    });
    ProxyClient browser = fickle.client();
    EXPECT_EQ(browser.get(url).body(), "once");
    EXPECT_EQ(browser.get(url).body(), "once");
    EXPECT_EQ(fickle.origin.connections(), 2);
    browser.send("POST", url, {}, "order");
    EXPECT_EQ(browser.receive().result_int(), 502u) << "what may have been done is not done again";
}

TEST(GatewayForwarding, FailuresSayWhatFailed)
{
    Forwarding forwarding([](OriginConnection& connection) {
        const auto request = connection.readRequest();
        if (request && request->target() == "/rubbish")
            connection.write("rubbish\r\n\r\n");
        if (request && request->target() == "/status")
            connection.write("HTTP/1.1 020 OK\r\nContent-Length: 0\r\n\r\n");
    });
    const std::tuple<std::string, std::string> cases[] = {
        {"http://nobody.example.test/", "nobody.example.test:80: Connection refused"},
        {"http://broken.example.test/", "not \"address:port\""},
        {"http://origin.example.test/", "the server closed the connection"},
        {"http://origin.example.test/rubbish", "not HTTP"},
        {"http://origin.example.test/status", "not HTTP"},
        {"https://origin.example.test/", "TLS handshake failed"},
    };
    ProxyClient browser = forwarding.client();
    for (const auto& [target, text] : cases) {
        const auto response = browser.get(target);
        EXPECT_EQ(response.result_int(), 502u) << target;
        EXPECT_THAT(response.body(), testing::HasSubstr(text)) << target;
    }
    for (const GatewayRequestRecord& record : forwarding.records.take(std::size(cases))) {
        EXPECT_EQ(record.by, AnsweredBy::Network);
        EXPECT_EQ(record.status, 502);
    }
}

TEST(GatewayForwarding, TruncatedBodiesDoNotLookComplete)
{
    for (const char* framing :
         {"Content-Length: 100\r\n\r\nshort", "Transfer-Encoding: chunked\r\n\r\n5\r\nshort\r\n"}) {
        Forwarding forwarding([framing](OriginConnection& connection) {
            connection.readRequest();
            connection.write(std::string("HTTP/1.1 200 OK\r\n") + framing);
        });
        ProxyClient browser = forwarding.client();
        browser.send("GET", url);
        EXPECT_THROW(browser.receive(), boost::system::system_error) << framing;
    }
}

TEST(GatewayForwarding, ServerLearnsThatTheBrowserHasLeft)
{
    std::promise<void> asked;
    std::promise<bool> ended;
    Forwarding forwarding([&](OriginConnection& connection) {
        connection.readRequest();
        asked.set_value();
        ended.set_value(connection.stream().ends());
    });
    {
        ProxyClient browser = forwarding.client();
        browser.send("GET", url);
        asked.get_future().get();
    }
    EXPECT_TRUE(ended.get_future().get());
    EXPECT_EQ(forwarding.records.take(1).front().status, 0);
}

TEST(GatewayForwarding, HeldUpBrowserHoldsUpTheServer)
{
    // Far more than all buffers on the way: the server can only finish if something stored it all.
    constexpr std::size_t total = 256 * 1024 * 1024;
    std::atomic<bool> finished{false};
    std::promise<void> stuck;
    Forwarding forwarding([&](OriginConnection& connection) {
        connection.readRequest();
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(total) + "\r\n\r\n");
        connection.stream().socket().non_blocking(true);
        const std::string piece(1024 * 1024, 'p');
        std::size_t sent = 0;
        int refusals = 0;
        while (sent < total && refusals < 20) {
            boost::system::error_code error;
            sent += connection.stream().socket().write_some(boost::asio::buffer(piece), error);
            refusals = error ? refusals + 1 : 0;
            if (error)
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        finished = sent >= total;
        stuck.set_value();
    });
    ProxyClient browser = forwarding.client();
    browser.send("GET", url);
    stuck.get_future().get();
    EXPECT_FALSE(finished);
}

TEST(GatewayForwarding, TlsServersAreReachedThroughTheMap)
{
    OriginServer origin(answering([](const auto&) { return okText("secure"); }), true);
    GatewayOptions options;
    options.resolve = {{QStringLiteral("origin.example.test:443"), origin.address()}};
    RequestGateway gateway(options);
    ProxyClient browser(gateway);
    EXPECT_EQ(browser.get("https://origin.example.test/").body(), "secure");
    EXPECT_EQ(browser.get("https://origin.example.test/").body(), "secure");
    EXPECT_EQ(origin.connections(), 1);
}

TEST(GatewayForwarding, LookedUpServersMustProveTheirName)
{
    OriginServer origin(answering([](const auto&) { return okText("secure"); }), true);
    RequestGateway gateway(GatewayOptions{});
    const auto response = ProxyClient(gateway).get("https://" + origin.address().toStdString() + "/");
    EXPECT_EQ(response.result_int(), 502u);
    EXPECT_THAT(response.body(), testing::HasSubstr("certificate"));
}
