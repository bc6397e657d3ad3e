#include <gmock/gmock.h>

#include "support/ProcessMemory.h"
#include "support/RunningServer.h"

namespace documents {
namespace {

namespace http = boost::beast::http;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class HttpConnectionTest : public testing::Test
{
protected:
    HttpConnectionTest() { place.add("site/static/big.bin", big); }

    HttpClient connect() const { return server.connect(); }
    HttpClient connectTls() const { return server.connectTls("docs.skyleaf.test"); }
    static void tell(HttpClient& client, const std::string& resource, const std::string& body)
    {
        RunningServer::tell(client, resource, body);
    }

    const QByteArray big = QByteArray(3'000'000, 'b');
    TemporarySite place;
    RunningServer server{optionsFor(place)};
};

TEST_F(HttpConnectionTest, oneConnectionServesManyRequests)
{
    HttpClient client = connect();
    const Response page = client.ask("GET", "/p/100001");
    EXPECT_EQ(page.body(), "text page");
    EXPECT_EQ(page[http::field::content_type], "text/html; charset=utf-8");

    const Response head = client.ask("HEAD", "/p/100001");
    EXPECT_EQ(head[http::field::content_length], "9");
    EXPECT_EQ(head.body(), "");

    const std::string known = "If-None-Match: " + std::string(page[http::field::etag]) + "\r\n";
    EXPECT_EQ(client.ask("GET", "/p/100001", {}, known).result_int(), 304U);

    EXPECT_EQ(client.ask("GET", "/static/big.bin").body(), big.toStdString());

    client.send("GET / HTTP/1.1\r\nHost: x\r\n\r\nGET /p/100002 HTTP/1.1\r\nHost: x\r\n"
                "Cookie: vlt_sid=anna\r\n\r\n");
    EXPECT_EQ(client.receive().body(), "home");
    EXPECT_EQ(client.receive().body(), "table page") << "requests sent ahead are answered in order";

    const Response last = client.ask("GET", "/", {}, "Connection: close\r\n");
    EXPECT_EQ(last[http::field::connection], "close");
    EXPECT_THROW(client.receiveSome(), boost::system::system_error);
}

TEST_F(HttpConnectionTest, tlsServesTheSameUnderItsCertificate)
{
    HttpClient client = connectTls();
    EXPECT_EQ(client.ask("GET", "/p/100001").body(), "text page");
    EXPECT_EQ(client.ask("GET", "/static/big.bin").body().size(), 3'000'000U);
    EXPECT_THAT(client.ask("POST", "/api/v3/office/file/100001/preopen/word", "{}").body(),
                HasSubstr("__VLTENV__"));
    EXPECT_THROW(server.connectTls("elsewhere.test"), boost::system::system_error);
}

TEST_F(HttpConnectionTest, packagesAreSentFromTheirFile)
{
    QByteArray package(3'000'001, Qt::Uninitialized);
    for (int i = 0; i < package.size(); ++i)
        package[i] = static_cast<char>(i * 31 + i / 4096);
    place.add("packages/quillword-2.5.0.zip", package);
    const std::string target = "/api/v3/office/package/quillword/2.5.0.zip";
    HttpClient client = connect();
    EXPECT_TRUE(client.ask("GET", target).body() == package.toStdString());
    EXPECT_EQ(client.ask("HEAD", target)[http::field::content_length], "3000001");
    tell(client, "shaping", R"({"kbps":1000000})");
    EXPECT_TRUE(client.ask("GET", target).body() == package.toStdString());
    HttpClient tls = connectTls();
    EXPECT_TRUE(tls.ask("GET", target).body() == package.toStdString());
}

TEST_F(HttpConnectionTest, brokenRequestsAreToldSo)
{
    const struct
    {
        std::string request;
        unsigned status;
    } cases[] = {
        {"nonsense\r\n\r\n", 400},
        {"GET / HTTP/9.9\r\n\r\n", 400},
        {"GET / HTTP/1.1\r\nContent-Length: -5\r\n\r\n", 400},
        {"POST /api/v3/office/files HTTP/1.1\r\nCookie: vlt_sid=a\r\nTransfer-Encoding: "
         "chunked\r\n\r\nzz\r\n",
         400},
        {"GET / HTTP/1.1\r\nX: " + std::string(40'000, 'x') + "\r\n\r\n", 431},
        {"PUT /api/v3/office/file/1/content HTTP/1.1\r\nCookie: vlt_sid=a\r\nContent-Length: "
         "67108865\r\n\r\n",
         413},
        {"PUT /api/v3/office/file/1/content HTTP/1.1\r\nContent-Length: 67108865\r\n\r\n", 401},
        {"PUT / HTTP/1.1\r\nExpect: 100-continue\r\nContent-Length: 67108865\r\n\r\n", 413},
    };
    for (const auto& entry : cases) {
        HttpClient client = connect();
        client.send(entry.request);
        EXPECT_EQ(client.receive().result_int(), entry.status) << entry.request.substr(0, 60);
    }
    EXPECT_EQ(connect().ask("GET", "/").result_int(), 200U);
}

TEST_F(HttpConnectionTest, aBodyTooLargeIsRefusedWhileItIsStillBeingSent)
{
    HttpClient client = connect();
    client.send("PUT /api/v3/office/file/1/content HTTP/1.1\r\nTransfer-Encoding: chunked\r\n"
                "Cookie: vlt_sid=anna\r\n\r\n");
    const std::string chunk = "100000\r\n" + std::string(0x100000, ' ') + "\r\n";
    for (int i = 0; i < 66; ++i)
        client.send(chunk);
    const Response reply = client.receive();
    EXPECT_EQ(reply.result_int(), 413U);
    EXPECT_THAT(reply.body(), HasSubstr("\"result\":\"TooLarge\""));
}

TEST_F(HttpConnectionTest, requestsWithoutEndAreNotKept)
{
    const std::string chunked = "POST /api/v3/office/files HTTP/1.1\r\nCookie: vlt_sid=anna\r\n"
                                "Transfer-Encoding: chunked\r\n\r\n";
    const std::string fields = "X: x\r\nX: x\r\nX: x\r\nX: x\r\nX: x\r\nX: x\r\nX: x\r\nX: x\r\n";
    const struct
    {
        const char* name;
        std::string begin;
        std::string piece;
        unsigned status;
    } cases[] = {
        {"field", "GET / HTTP/1.1\r\nX: ", std::string(65536, 'x'), 431},
        {"fields", "GET / HTTP/1.1\r\n", fields, 431},
        {"extension", chunked + "1;", std::string(65536, 'x'), 400},
        {"trailer", chunked + "0\r\nT: ", std::string(65536, 'x'), 400},
        {"trailers", chunked + "0\r\n", fields, 400},
    };
    constexpr std::size_t flood = 64 * 1024 * 1024;
    for (const auto& entry : cases) {
        SCOPED_TRACE(entry.name);
        HttpClient measured = connect();
        measured.send(entry.begin);
        for (std::size_t sent = 0; sent < 160 * 1024; sent += entry.piece.size())
            measured.send(entry.piece);
        EXPECT_EQ(measured.receive().result_int(), entry.status);

        const std::size_t before = residentBytes();
        HttpClient endless = connect();
        const auto send = [&] {
            endless.send(entry.begin);
            for (std::size_t sent = 0; sent < flood; sent += entry.piece.size())
                endless.send(entry.piece);
        };
        try {
            send();
        } catch (const boost::system::system_error&) {
            // It is told the end before it comes to its own.
        }
        EXPECT_LT(residentBytes(), before + flood / 4);
    }
}

TEST_F(HttpConnectionTest, aClientThatAsksFirstIsToldToGoOn)
{
    HttpClient client = connect();
    client.send("POST /api/v3/office/files HTTP/1.1\r\nExpect: 100-continue\r\nContent-Length: 18\r\n"
                "Cookie: vlt_sid=anna\r\n\r\n");
    EXPECT_THAT(client.receiveSome(), StartsWith("HTTP/1.1 100 "));
    client.send("{\"officeType\":\"w\"}");
    EXPECT_THAT(client.receive().body(), HasSubstr("\"id\":\"100003\""));
}

TEST_F(HttpConnectionTest, faultsReachTheWire)
{
    HttpClient control = connect();
    tell(
        control, "fault",
        R"({"/static/big.bin":{"cutAfter":100000},"/static/app.css":{"reset":true},"/p/":{"delayMs":600000}})");

    HttpClient cut = connect();
    cut.send("GET /static/big.bin HTTP/1.1\r\n\r\n");
    std::string received;
    EXPECT_THROW(for (;;) received += cut.receiveSome(), boost::system::system_error);
    EXPECT_THAT(received, HasSubstr("Content-Length: 3000000\r\n"));
    EXPECT_EQ(received.size() - received.find("\r\n\r\n") - 4, 100'000U);

    HttpClient reset = connect();
    try {
        reset.ask("GET", "/static/app.css");
        ADD_FAILURE() << "the connection must be reset";
    } catch (const boost::system::system_error& error) {
        EXPECT_EQ(error.code(), boost::asio::error::connection_reset);
    }

    HttpClient late = connect();
    late.send("GET /p/100001 HTTP/1.1\r\nCookie: vlt_sid=anna\r\n\r\n");
    const std::string log = control.ask("GET", "/_control/log").body();
    EXPECT_THAT(log, HasSubstr("\"status\":0")) << "others are served while one waits";
    EXPECT_THAT(log, Not(HasSubstr("/p/100001")));
}

TEST_F(HttpConnectionTest, theImitatedLineHoldsRepliesBack)
{
    HttpClient control = connect();
    HttpClient client = connect();
    ASSERT_EQ(client.ask("GET", "/home").body(), "home");

    tell(control, "shaping", R"({"rttMs":60000})");
    client.send("GET /recent HTTP/1.1\r\n\r\n");
    const std::string duringWait = control.ask("GET", "/_control/log").body();
    EXPECT_THAT(duringWait, HasSubstr("/home"));
    EXPECT_THAT(duringWait, Not(HasSubstr("/recent")));

    // At eight bits a millisecond the file would take fifty minutes; the new rate holds for what is left of
    // it.
    tell(control, "shaping", R"({"rttMs":0,"kbps":8})");
    HttpClient slow = connect();
    slow.send("GET /static/big.bin HTTP/1.1\r\n\r\n");
    EXPECT_LE(slow.receiveSome().size(), 256U);
    EXPECT_THAT(control.ask("GET", "/_control/log").body(), Not(HasSubstr("big.bin")));
    tell(control, "shaping", R"({"kbps":0})");
    std::size_t received = 0;
    while (received < 2'900'000)
        received += slow.receiveSome().size();
}

TEST_F(HttpConnectionTest, theAccessLogTellsOfEveryRequest)
{
    HttpClient client = connect();
    client.ask("GET", "/p/100001?x=%22", {}, "User-Agent: tester\r\nCookie: a=1; vlt_sid=s\r\n");
    client.ask("GET", "/_control/log");
    client.ask("GET", "/"); // a line is written after its reply, so the last one may be missing yet
    const auto lines = readFile(place.path("access.log")).split('\n');
    ASSERT_GE(lines.size(), 3);
    EXPECT_THAT(lines.at(1).toStdString(), HasSubstr("/_control/log"));
    EXPECT_THAT(lines.first().toStdString(),
                testing::AllOf(HasSubstr(R"("cookie":"a=1; vlt_sid=*","cookies":["vlt_sid"],"headers":{)"),
                               HasSubstr(R"("user-agent":"tester"})"),
                               HasSubstr(R"("status":200,"t":1700000000000,"target":"/p/100001?x=%22")")));
}

TEST(DocumentsServerStart, saysWhatIsNotToBeHad)
{
    const TemporarySite place;
    boost::asio::io_context context;
    ServerOptions options = optionsFor(place);
    QString errorText;
    const auto clock = [] { return 0; };
    const auto first = DocumentsServer::start(context, options, clock, &errorText);
    ASSERT_TRUE(first) << qPrintable(errorText);

    options.httpPort = first->httpPort();
    EXPECT_FALSE(DocumentsServer::start(context, options, clock, &errorText));
    EXPECT_THAT(errorText.toStdString(), HasSubstr("--http-port"));

    options.accessLog = place.path("no/such/folder/log");
    EXPECT_FALSE(DocumentsServer::start(context, options, clock, &errorText));
    EXPECT_THAT(errorText.toStdString(), StartsWith("--access-log"));

    options.documentsDirectory = place.path("secret.txt");
    EXPECT_FALSE(DocumentsServer::start(context, options, clock, &errorText));
    EXPECT_THAT(errorText.toStdString(), StartsWith("--documents"));
}

} // namespace
} // namespace documents
