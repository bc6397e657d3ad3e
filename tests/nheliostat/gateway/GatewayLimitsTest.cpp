#include "support/OriginServer.h"
#include "support/ProcessMemory.h"
#include "support/ProxyClient.h"
#include "support/RecordLog.h"

#include "gateway/RequestGateway.h"

#include <boost/beast/http/field.hpp>

#include <gmock/gmock.h>

#include <future>
#include <thread>

// Peers that are slow, that never come to an end, or that are just leaving.

using namespace std::chrono_literals;

namespace {

const std::string url = "http://origin.example.test/path";

struct Limited
{
    explicit Limited(OriginServer::Serve serve, GatewayLimits limits = {})
        : origin(std::move(serve))
    {
        GatewayOptions options;
        options.threads = 1;
        options.interceptedHosts = QStringList{QStringLiteral("docs.example.test")};
        options.resolve = {{QStringLiteral("origin.example.test"), origin.address()}};
        options.observer = records.observer();
        options.limits = limits;
        gateway = std::make_unique<RequestGateway>(options);
    }
    ProxyClient client() { return ProxyClient(*gateway, "view"); }

    OriginServer origin;
    RecordLog records;
    std::unique_ptr<RequestGateway> gateway;
};

OriginServer::Serve answeringOk()
{
    return answering([](const auto&) { return okText("answer"); });
}

/** Sends `piece` until the peer has enough, or `most` bytes; returns how many were sent. */
std::size_t sendWithoutEnd(TestStream& stream, const std::string& piece, std::size_t most)
{
    std::size_t sent = 0;
    boost::system::error_code error;
    while (!error && sent < most)
        sent += boost::asio::write(stream.socket(), boost::asio::buffer(piece), error);
    return sent;
}

constexpr std::size_t flood = 128 * 1024 * 1024;
constexpr std::size_t muchMemory = 32 * 1024 * 1024;

} // namespace

TEST(GatewayLimits, MessagesArriveInAnyPieces)
{
    Limited limited([](OriginConnection& connection) {
        while (const auto request = connection.readRequest()) {
            const std::string chunked =
                "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n9;x\r\nin pieces\r\n"
                "0\r\n\r\n";
            for (const char byte : request->body() == "a body" ? chunked : okText("in pieces"))
                connection.write(std::string(1, byte));
        }
    });
    ProxyClient browser = limited.client();
    const std::string cookie = "Cookie: c=" + std::string(40'000, 'c') + "\r\n";
    const std::string request = "GET " + url + " HTTP/1.1\r\n" + browser.authorization() + cookie + "\r\n";
    for (std::size_t at = 0; at < request.size(); at += at < 300 ? 1 : 7'000)
        browser.stream().write(request.substr(at, at < 300 ? 1 : 7'000));
    EXPECT_EQ(browser.receive().body(), "in pieces");
    browser.send("PUT", url, "Transfer-Encoding: chunked\r\n");
    for (const char byte : std::string("2\r\na \r\n4\r\nbody\r\n0\r\nT: t\r\n\r\n"))
        browser.stream().write(std::string(1, byte));
    EXPECT_EQ(browser.receive().body(), "in pieces");
    EXPECT_EQ(browser.get(url).body(), "in pieces");
}

TEST(GatewayLimits, IdleConnectionsAreEndedSoThatTheBrowserNotices)
{
    GatewayLimits limits;
    limits.idle = 150ms;
    Limited limited(answeringOk(), limits);
    ProxyClient plain = limited.client();
    EXPECT_EQ(plain.get(url).body(), "answer");
    EXPECT_TRUE(plain.stream().ends());

    ProxyClient granted = limited.client();
    EXPECT_EQ(granted.openTunnel("docs.example.test:443"), 200u);
    EXPECT_TRUE(granted.stream().ends());

    ProxyClient secure = limited.client();
    EXPECT_EQ(secure.openTunnel("docs.example.test:443"), 200u);
    secure.startTls();
    boost::system::error_code error;
    char byte = 0;
    secure.stream().read_some(boost::asio::buffer(&byte, 1), error);
    EXPECT_EQ(error, boost::asio::error::eof) << "closed in order, not cut";

    // A request under way is no idleness.
    std::promise<void> late;
    Limited slow(
        [&](OriginConnection& connection) {
            connection.readRequest();
            late.get_future().wait();
            connection.write(okText("late"));
        },
        limits);
    ProxyClient waiting = slow.client();
    waiting.send("GET", url);
    std::this_thread::sleep_for(limits.idle * 3);
    late.set_value();
    EXPECT_EQ(waiting.receive().body(), "late");
}

TEST(GatewayLimits, EveryRequestOnAnEndingConnectionIsAnsweredOrLeftForAnother)
{
    GatewayLimits limits;
    limits.idle = 40ms; // looked at every 10 ms: requests come just before, at, and just after the end
    Limited limited(answeringOk(), limits);
    int ended = 0;
    for (int i = 0; i < 40; ++i) {
        ProxyClient browser = limited.client();
        EXPECT_EQ(browser.get(url).body(), "answer");
        std::this_thread::sleep_for(35ms + std::chrono::microseconds(500 * i));
        std::string answer;
        try {
            browser.send("GET", url);
            answer = browser.stream().read(1);
        } catch (const boost::system::system_error&) {
        }
        ended += answer.empty() ? 1 : 0;
        if (!answer.empty()) {
            EXPECT_THAT(answer + browser.stream().readToEnd(), testing::EndsWith("\r\n\r\nanswer"));
        }
    }
    EXPECT_GT(ended, 0);
}

TEST(GatewayLimits, SlowRequestsAreToldSo)
{
    GatewayLimits limits;
    limits.requestHead = 200ms;
    limits.silence = 300ms;
    Limited limited([](OriginConnection& connection) { connection.readRequest(); }, limits);
    for (const bool allowed : {false, true}) {
        ProxyClient browser = limited.client();
        browser.stream().write("GET " + url + " HTTP/1.1\r\n" + (allowed ? browser.authorization() : ""));
        EXPECT_EQ(browser.receive().result_int(), 408u);
        EXPECT_TRUE(browser.stream().ends());
    }
    ProxyClient browser = limited.client();
    browser.send("POST", url, "Content-Length: 10\r\n");
    browser.stream().write("half");
    EXPECT_EQ(browser.receive().result_int(), 504u);
}

TEST(GatewayLimits, SlowAnswersAreGivenUp)
{
    GatewayLimits limits;
    limits.answerHead = 200ms;
    limits.silence = 400ms;
    const std::tuple<const char*, std::string, unsigned> cases[] = {
        {"nothing", "", 504},
        {"half a head", "HTTP/1.1 200 OK\r\nContent-", 504},
        {"half a head after an interim one", "HTTP/1.1 103 Early Hints\r\n\r\nHTTP/1.1 200 OK\r\n", 504},
        {"half a body", "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf", 200},
    };
    for (const auto& [name, answer, status] : cases) {
        Limited limited(
            [&text = answer](OriginConnection& connection) {
                connection.readRequest();
                connection.write(text);
                connection.stream().ends();
            },
            limits);
        ProxyClient browser = limited.client();
        browser.send("GET", url);
        if (answer.find(" 103 ") != std::string::npos) {
            EXPECT_EQ(browser.receive().result_int(), 103u) << name;
        }
        if (status == 200) {
            EXPECT_THAT(browser.stream().readToEnd(), testing::EndsWith("\r\n\r\nhalf")) << name;
        } else {
            EXPECT_EQ(browser.receive().result_int(), status) << name;
        }
        EXPECT_EQ(limited.records.take(1).front().status, int(status)) << name;
    }
}

TEST(GatewayLimits, AnAnswerThatGoesOnSlowlyAndABrowserThatWaitsAreLeftAlone)
{
    GatewayLimits limits;
    limits.silence = 300ms;
    const std::string big(16 * 1024 * 1024, 'b');
    Limited limited(
        [&](OriginConnection& connection) {
            connection.readRequest();
            connection.write("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n");
            for (int i = 0; i < 10; ++i) {
                std::this_thread::sleep_for(limits.silence / 4);
                connection.write("s");
            }
            connection.readRequest();
            connection.write(okText(big));
        },
        limits);
    ProxyClient browser = limited.client();
    EXPECT_EQ(browser.get(url).body(), "ssssssssss");
    browser.send("GET", url);
    EXPECT_EQ(browser.stream().read(9), "HTTP/1.1 ");
    std::this_thread::sleep_for(limits.silence * 3); // a paused download
    EXPECT_GT(browser.stream().read(big.size()).size(), big.size() - 1);
}

TEST(GatewayLimits, EndlessRequestsAreNotKept)
{
    const std::string chunked = "POST " + url + " HTTP/1.1\r\nTransfer-Encoding: chunked\r\n";
    const struct
    {
        const char* name;
        bool allowed;
        std::string begin;
        std::string piece;
        unsigned status;
    } cases[] = {
        {"extension", false, chunked + "\r\n1;", std::string(65536, 'x'), 407},
        {"trailer", false, chunked + "\r\n0\r\nT: ", std::string(65536, 'x'), 407},
        {"extension", true, chunked + "\r\n1;", std::string(65536, 'x'), 400},
        {"trailer", true, chunked + "\r\n0\r\nT: ", std::string(65536, 'x'), 400},
        {"trailers", true, chunked + "\r\n0\r\n", "T: t\r\nT: t\r\nT: t\r\nT: t\r\n", 400},
        {"field", false, "GET " + url + " HTTP/1.1\r\nX: ", std::string(65536, 'x'), 431},
        {"fields", false, "GET " + url + " HTTP/1.1\r\n", "X: x\r\nX: x\r\nX: x\r\nX: x\r\n", 431},
        {"target", false, "GET " + url, std::string(65536, 'x'), 431},
    };
    for (const auto& entry : cases) {
        SCOPED_TRACE(std::string(entry.name) + (entry.allowed ? ", allowed" : ""));
        Limited limited([](OriginConnection& connection) { connection.stream().readToEnd(); });
        const std::size_t before = residentBytes();
        ProxyClient browser = limited.client();
        std::string begin = entry.begin;
        if (entry.allowed)
            begin.insert(begin.find("\r\n") + 2, browser.authorization());
        browser.stream().write(begin);
        EXPECT_LT(sendWithoutEnd(browser.stream(), entry.piece, flood), flood) << "taken to its end";
        EXPECT_LT(residentBytes(), before + muchMemory);
    }
    // The same in measure: the answer can be read.
    for (const auto& entry : cases) {
        SCOPED_TRACE(std::string(entry.name) + (entry.allowed ? ", allowed" : ""));
        Limited limited([](OriginConnection& connection) { connection.stream().readToEnd(); });
        ProxyClient browser = limited.client();
        std::string begin = entry.begin;
        if (entry.allowed)
            begin.insert(begin.find("\r\n") + 2, browser.authorization());
        browser.stream().write(begin);
        sendWithoutEnd(browser.stream(), entry.piece, 200 * 1024);
        EXPECT_EQ(browser.receive().result_int(), entry.status);
    }
}

TEST(GatewayLimits, EndlessAnswersAreNotKept)
{
    const std::string chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    const std::tuple<const char*, std::string, std::string, unsigned> cases[] = {
        {"field", "HTTP/1.1 200 OK\r\nX: ", std::string(65536, 'x'), 502},
        {"fields", "HTTP/1.1 200 OK\r\n", "X: x\r\nX: x\r\nX: x\r\nX: x\r\n", 502},
        {"reason", "HTTP/1.1 200 ", std::string(65536, 'x'), 502},
        {"extension", chunked + "1;", std::string(65536, 'x'), 200},
        {"trailer", chunked + "1\r\nb\r\n0\r\nT: ", std::string(65536, 'x'), 200},
        {"trailers", chunked + "0\r\n", "T: t\r\nT: t\r\nT: t\r\nT: t\r\n", 200},
    };
    for (const auto& [name, begin, piece, status] : cases) {
        SCOPED_TRACE(name);
        std::promise<std::size_t> sent;
        Limited limited([&, &head = begin, &more = piece](OriginConnection& connection) {
            connection.readRequest();
            connection.write(head);
            sent.set_value(sendWithoutEnd(connection.stream(), more, flood));
        });
        const std::size_t before = residentBytes();
        ProxyClient browser = limited.client();
        browser.send("GET", url);
        EXPECT_LT(sent.get_future().get(), flood) << "taken to its end";
        EXPECT_LT(residentBytes(), before + muchMemory);
        EXPECT_EQ(limited.records.take(1).front().status, int(status));
        if (status == 200)
            EXPECT_THAT(browser.stream().readToEnd(), testing::Not(testing::EndsWith("0\r\n\r\n")));
        else
            EXPECT_EQ(browser.receive().result_int(), status);
    }
}

TEST(GatewayLimits, InterimAnswersComeToAnEnd)
{
    for (const int interim : {GatewayLimits::interimAnswers, GatewayLimits::interimAnswers + 1}) {
        Limited limited([interim](OriginConnection& connection) {
            connection.readRequest();
            for (int i = 0; i < interim; ++i)
                connection.write("HTTP/1.1 102 Processing\r\n\r\n");
            connection.write(okText("at last"));
            connection.stream().ends();
        });
        ProxyClient browser = limited.client();
        browser.send("GET", url);
        for (int i = 0; i < GatewayLimits::interimAnswers; ++i)
            ASSERT_EQ(browser.receive().result_int(), 102u);
        EXPECT_EQ(browser.receive().result_int(), interim == GatewayLimits::interimAnswers ? 200u : 502u);
    }
}

TEST(GatewayLimits, WhatMayBeSentTwiceIsSentAgainWhenTheServerWasJustLeaving)
{
    // Serves one request of a connection, takes part of the next, and closes it without a word.
    std::mutex mutex;
    std::vector<std::string> bodies;
    Limited limited([&](OriginConnection& connection) {
        const auto keep = [&](const auto& request) {
            const std::lock_guard lock(mutex);
            bodies.push_back(request ? request->body() : "left");
        };
        keep(connection.readRequest());
        connection.write(okText("once"));
        const auto head = connection.readHead();
        if (head && (*head)[boost::beast::http::field::content_length].size() > 5)
            connection.stream().read(256 * 1024); // of a large one, more than is kept for a second time
    });
    ProxyClient browser = limited.client();
    const std::string body = "the words";
    EXPECT_EQ(browser.get(url).body(), "once");
    browser.send("PUT", url, {}, body);
    EXPECT_EQ(browser.receive().body(), "once");
    browser.send("PUT", url, "Transfer-Encoding: chunked\r\n");
    browser.stream().write("3\r\nthe\r\n6\r\n words\r\n0\r\n\r\n");
    EXPECT_EQ(browser.receive().body(), "once");
    EXPECT_EQ(limited.origin.connections(), 3);
    EXPECT_THAT(bodies, testing::ElementsAre("", body, body));

    browser.send("PUT", url, {}, std::string(1024 * 1024, 'w'));
    EXPECT_EQ(browser.receive().result_int(), 502u) << "too much to be kept for a second time";
}

TEST(GatewayLimits, WhatMustNotBeSentTwiceTakesAFreshConnection)
{
    GatewayLimits limits;
    limits.farewell = 100ms; // times are looked at often
    Limited limited(
        [](OriginConnection& connection) {
            connection.readRequest();
            connection.write(okText("once"));
            connection.readRequest();
        },
        limits);
    ProxyClient browser = limited.client();
    EXPECT_EQ(browser.get(url).body(), "once");
    std::this_thread::sleep_for(1100ms); // longer than a connection counts as fresh
    browser.send("POST", url, {}, "order");
    EXPECT_EQ(browser.receive().body(), "once");
    EXPECT_EQ(limited.origin.connections(), 2);
}

TEST(GatewayLimits, HalfATunnelEnds)
{
    GatewayLimits limits;
    limits.silence = 200ms;
    std::promise<void> over;
    Limited limited(
        [&](OriginConnection& connection) {
            EXPECT_EQ(connection.stream().readToEnd(), "still open");
            over.get_future().wait(); // and says no more
        },
        limits);
    ProxyClient browser = limited.client();
    ASSERT_EQ(browser.openTunnel("origin.example.test:443"), 200u);
    std::this_thread::sleep_for(limits.silence * 3);
    browser.stream().write("still open");
    browser.stream().closeWrite();
    EXPECT_TRUE(browser.stream().ends());
    over.set_value();
}
