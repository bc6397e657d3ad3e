#include "support/OriginServer.h"
#include "support/ProxyClient.h"
#include "support/RecordLog.h"

#include "gateway/RequestGateway.h"

#include <boost/beast/http/field.hpp>

#include <gmock/gmock.h>

namespace http = boost::beast::http;
using AnsweredBy = GatewayRequestRecord::AnsweredBy;

namespace {

constexpr char switching[] =
    "HTTP/1.1 101 Switching Protocols\r\nConnection: Upgrade\r\nUpgrade: websocket\r\n\r\n";
constexpr char webSocketLines[] =
    "Connection: keep-alive, Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Key: k\r\n";

/** Grants the switch, greets at once, then sends everything back until the browser ends. */
void echoWebSocket(OriginConnection& connection)
{
    const auto request = connection.readRequest();
    ASSERT_TRUE(request);
    EXPECT_EQ((*request)[http::field::upgrade], "websocket");
    connection.write(std::string(switching) + "hi");
    connection.write(connection.stream().read(4));
    connection.stream().ends();
}

struct Tunnels
{
    explicit Tunnels(OriginServer::Serve serve, bool withTls = false)
        : origin(std::move(serve), withTls)
    {
        GatewayOptions options;
        options.interceptedHosts = QStringList{QStringLiteral("Docs.example.test")};
        options.resolve = {{QStringLiteral("docs.example.test"), origin.address()},
                           {QStringLiteral("plain.example.test"), origin.address()},
                           {QStringLiteral("nobody.example.test"), QStringLiteral("127.0.0.1:1")}};
        options.observer = records.observer();
        gateway = std::make_unique<RequestGateway>(options);
        view = gateway->openView();
    }

    OriginServer origin;
    RecordLog records;
    std::unique_ptr<RequestGateway> gateway;
    QByteArray view;
};

} // namespace

TEST(GatewayTunnels, OtherHostsAreTunnelledAndHalfClosed)
{
    Tunnels tunnels([](OriginConnection& connection) {
        const std::string all = connection.stream().readToEnd();
        connection.write("after the end: " + all);
    });
    ProxyClient browser(*tunnels.gateway);
    ASSERT_EQ(browser.openTunnel("plain.example.test:443"), 200u);
    const std::string big(2 * 1024 * 1024, 't');
    browser.stream().write(big);
    browser.stream().closeWrite();
    EXPECT_TRUE(browser.stream().readToEnd() == "after the end: " + big);

    const GatewayRequestRecord record = tunnels.records.take(1).front();
    EXPECT_EQ(record.method, QByteArray("CONNECT"));
    EXPECT_EQ(record.url, QUrl(QStringLiteral("https://plain.example.test")));
    EXPECT_EQ(record.bytes, static_cast<qint64>(big.size()) + 15);
}

TEST(GatewayTunnels, NeedCredentialsAndAServer)
{
    Tunnels tunnels([](OriginConnection&) {});
    ProxyClient browser(*tunnels.gateway);
    for (const char* endpoint : {"docs.example.test:443", "plain.example.test:443"}) {
        browser.stream().write(std::string("CONNECT ") + endpoint + " HTTP/1.1\r\n\r\n");
        EXPECT_EQ(browser.receive().result_int(), 407u) << endpoint;
    }
    EXPECT_EQ(tunnels.origin.connections(), 0);
    browser.send("CONNECT", "nobody.example.test:443");
    const auto response = browser.receive();
    EXPECT_EQ(response.result_int(), 502u);
    EXPECT_THAT(response.body(), testing::HasSubstr("refused"));
}

TEST(GatewayTunnels, InterceptedHostsAreAnsweredUnderTls)
{
    Tunnels tunnels(
        answering([](const auto& request) { return okText("network " + std::string(request.target())); }),
        true);
    const NxResourceHandler handler = [](const IWebViewResourceProviderCallbackPtr& callback) {
        callback->complete({{QStringLiteral("resourceData"), callback->requestUrl().toUtf8()}});
        return true;
    };
    tunnels.gateway->addHandlers(tunnels.view,
                                 {{QStringLiteral("https://docs.example.test/l/"), handler},
                                  {QStringLiteral("https://docs.example.test:8443/"), handler}});
    ProxyClient browser(*tunnels.gateway, tunnels.view);
    ASSERT_EQ(browser.openTunnel("DOCS.example.test:443"), 200u);
    EXPECT_EQ(browser.startTls(), tunnels.gateway->certificateDer());
    const unsigned char* protocol = nullptr;
    unsigned int size = 0;
    SSL_get0_alpn_selected(browser.stream().ssl(), &protocol, &size);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(protocol), size), "http/1.1");

    EXPECT_EQ(browser.get("/l/page?q").body(), "https://docs.example.test/l/page?q");
    EXPECT_EQ(browser.get("/api").body(), "network /api");
    EXPECT_EQ(browser.get("https://docs.example.test/l/absolute").body(),
              "https://docs.example.test/l/absolute");
    browser.send("CONNECT", "plain.example.test:443");
    EXPECT_EQ(browser.receive().result_int(), 400u);

    ProxyClient other(*tunnels.gateway, tunnels.view);
    ASSERT_EQ(other.openTunnel("docs.example.test:8443"), 200u);
    other.startTls(nullptr);
    EXPECT_EQ(other.get("/").body(), "https://docs.example.test:8443/");
    EXPECT_EQ(tunnels.records.take(1).front().url,
              QUrl(QStringLiteral("https://docs.example.test/l/page?q")));
}

TEST(GatewayTunnels, LargeAnswersAndUploadsPassThroughTls)
{
    Tunnels tunnels(answering([](const auto& request) { return okText(request.body()); }), true);
    const QByteArray body(12 * 1024 * 1024 + 7, 'L');
    tunnels.gateway->addHandlers(tunnels.view,
                                 {{QStringLiteral("https://docs.example.test/large"),
                                   [body](const IWebViewResourceProviderCallbackPtr& callback) {
                                       callback->complete({{QStringLiteral("resourceData"), body}});
                                       return true;
                                   }}});
    ProxyClient browser(*tunnels.gateway, tunnels.view);
    ASSERT_EQ(browser.openTunnel("docs.example.test:443"), 200u);
    browser.startTls();
    for (int i = 0; i < 2; ++i)
        EXPECT_TRUE(browser.get("/large").body() == body.toStdString());
    const std::string upload(2 * 1024 * 1024, 'U');
    browser.send("POST", "/echo", {}, upload);
    EXPECT_TRUE(browser.receive().body() == upload);
}

TEST(GatewayTunnels, HandshakeMayBeRubbishOrNeverCome)
{
    Tunnels tunnels([](OriginConnection&) {});
    ProxyClient browser(*tunnels.gateway);
    ASSERT_EQ(browser.openTunnel("docs.example.test:443"), 200u);
    browser.stream().write(std::string("\x16\x03\x01rubbish that is no handshake at all", 36));
    browser.stream().readToEnd();
    {
        ProxyClient silent(*tunnels.gateway);
        ASSERT_EQ(silent.openTunnel("docs.example.test:443"), 200u);
    }
    ProxyClient waiting(*tunnels.gateway);
    ASSERT_EQ(waiting.openTunnel("docs.example.test:443"), 200u);
    tunnels.gateway.reset();
    EXPECT_TRUE(waiting.stream().ends());
}

TEST(GatewayTunnels, WebSocketsPassInAbsoluteFormAndInsideTunnels)
{
    Tunnels tunnels(echoWebSocket);
    ProxyClient absolute(*tunnels.gateway, tunnels.view);
    absolute.send("GET", "http://docs.example.test/socket", webSocketLines);
    ProxyClient inner(*tunnels.gateway, tunnels.view);
    ASSERT_EQ(inner.openTunnel("docs.example.test:80"), 200u);
    inner.send("GET", "/socket", webSocketLines);
    for (ProxyClient* browser : {&absolute, &inner}) {
        const std::string head = browser->stream().read(sizeof switching - 1);
        EXPECT_THAT(head, testing::StartsWith("HTTP/1.1 101 Switching Protocols\r\n"));
        EXPECT_THAT(head, testing::HasSubstr("Connection: Upgrade\r\n"));
        EXPECT_EQ(browser->stream().read(2), "hi");
        browser->stream().write("ping");
        EXPECT_EQ(browser->stream().read(4), "ping");
        browser->leave();
    }
    EXPECT_EQ(tunnels.records.take(2)[0].status, 101);
}
