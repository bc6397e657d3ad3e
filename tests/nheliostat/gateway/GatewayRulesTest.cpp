#include "gateway/Answers.h"
#include "gateway/CacheRules.h"
#include "gateway/Credentials.h"
#include "gateway/HeaderRules.h"
#include "gateway/LocalFiles.h"
#include "gateway/MimeTypes.h"
#include "gateway/RequestHead.h"
#include "gateway/RequestTarget.h"
#include "gateway/ViewRegistry.h"

#include <gmock/gmock.h>

using namespace gateway;
using testing::HasSubstr;
using testing::Not;

TEST(GatewayRules, AbsoluteTargetsTakeTheirNormalForm)
{
    const std::pair<std::string_view, std::optional<std::string>> cases[] = {
        {"http://docs.example.test/l/a?b=c", "http://docs.example.test/l/a?b=c"},
        {"HTTP://Docs.Example.TEST:80/Path", "http://docs.example.test/Path"},
        {"https://docs.example.test:443/", "https://docs.example.test/"},
        {"http://docs.example.test:443/", "http://docs.example.test:443/"},
        {"http://docs.example.test", "http://docs.example.test/"},
        {"http://docs.example.test?q", "http://docs.example.test/?q"},
        {"http://docs.example.test/a#frag", "http://docs.example.test/a"},
        {"http://[::1]:8080/a", "http://[::1]:8080/a"},
        {"http://docs.example.test:/a", "http://docs.example.test/a"},
        {"/path", std::nullopt},
        {"ftp://docs.example.test/", std::nullopt},
        {"http://user@docs.example.test/", std::nullopt},
        {"http://docs.example.test:0/", std::nullopt},
        {"http://docs.example.test:65536/", std::nullopt},
        {"http://docs.example.test:8o/", std::nullopt},
        {"http:///path", std::nullopt},
        {"http://[::1/path", std::nullopt},
    };
    for (const auto& [text, url] : cases) {
        const auto target = targetOfAbsoluteForm(text);
        EXPECT_EQ(target.has_value(), url.has_value()) << text;
        EXPECT_EQ(target ? target->url : "", url.value_or("")) << text;
    }
    const auto target = targetOfAbsoluteForm("http://[::1]:8080/a/b?c");
    EXPECT_EQ(target->path(), "/a/b");
    EXPECT_EQ(target->origin.endpoint.bareHost(), "::1");
}

TEST(GatewayRules, PrefixesEndAtTheHostAndDirectoriesAtASegment)
{
    const std::string_view url = "https://docs.example.test/static/app.js?v=1";
    EXPECT_TRUE(urlStartsWith(url, "https://docs.example.test"));
    EXPECT_TRUE(urlStartsWith(url, "https://docs.example.test/sta"));
    EXPECT_FALSE(urlStartsWith("https://docs.example.test.evil.test/", "https://docs.example.test"));
    EXPECT_FALSE(urlStartsWith("http://docs.example.test/static/", "https://docs.example.test/"));

    EXPECT_EQ(urlBelow(url, "https://docs.example.test/static"), "/app.js?v=1");
    EXPECT_EQ(urlBelow(url, "https://docs.example.test/static/"), "app.js?v=1");
    EXPECT_EQ(urlBelow(url, "https://docs.example.test/sta"), std::nullopt);
}

TEST(GatewayRules, FilePathsAreDecodedAndNeverClimb)
{
    const std::pair<std::string_view, std::optional<std::string>> cases[] = {
        {"/a/b.js?v=1", "a/b.js"},    {"a%20b/%C3%A9.png", "a b/\xC3\xA9.png"},
        {"a/..b", "a/..b"},           {"", std::nullopt},
        {"/?x", std::nullopt},        {"../secret", std::nullopt},
        {"a/%2e%2E/b", std::nullopt}, {"a%2f..%2fb", std::nullopt},
        {"a/..", std::nullopt},       {"a%00.png", std::nullopt},
        {"a%5c..%5cb", std::nullopt}, {"a%2", std::nullopt},
        {"a%zz", std::nullopt},
    };
    for (const auto& [rest, path] : cases)
        EXPECT_EQ(relativeFilePath(rest), path) << rest;
}

TEST(GatewayRules, MediaTypesFollowTheLastSuffix)
{
    EXPECT_EQ(mimeTypeOfPath("/office/w/1"), "text/html; charset=utf-8");
    EXPECT_EQ(mimeTypeOfPath("/v1.2/page"), "text/html; charset=utf-8");
    EXPECT_EQ(mimeTypeOfPath("/a/app.min.JS"), "text/javascript; charset=utf-8");
    EXPECT_EQ(mimeTypeOfPath("/a.css"), "text/css; charset=utf-8");
    EXPECT_EQ(mimeTypeOfPath("/a.unheard"), "application/octet-stream");
}

TEST(GatewayRules, UrlsNameTheirContentByAHash)
{
    for (const char* path : {"/js/app.0123abcd.js", "/a.b.DEADBEEF01.css", "/x.00000000.wasm",
                             "/f.12345678.woff2", "/i.12345678.json", "/m.12345678.mjs"})
        EXPECT_TRUE(namesItsContent(path)) << path;
    for (const char* path :
         {"/app.js", "/app.1234567.js", "/app.0123abcg.js", "/.0123abcd.js", "/app.0123abcd.html",
          "/app.0123abcd", "/app.0123abcd.js/", "/0123abcd.js", "/app.0123abcd.JS", "/"})
        EXPECT_FALSE(namesItsContent(path)) << path;
}

TEST(GatewayRules, WhatTheBrowserMayKeepFollowsFromTheAnswer)
{
    const std::string_view script = "text/javascript; charset=utf-8";
    const std::string_view page = "Text/HTML; charset=utf-8";
    const struct
    {
        LocalContent content;
        Caching ofHandler;
        Caching ofFile;
    } cases[] = {
        {{"/js/app.0123abcd.js", script, 1}, Caching::Forever, Caching::Forever},
        {{"/js/app.0123abcd.js", script, 0}, Caching::Never, Caching::Never},
        {{"/js/app.0123abcd.js", page, 1}, Caching::Never, Caching::Forever},
        {{"/js/app.js", script, 8 << 20}, Caching::Revalidate, Caching::Revalidate},
        {{"/js/app.js", script, (8 << 20) + 1}, Caching::Never, Caching::Revalidate},
        {{"/logo", "image/png", 1}, Caching::Revalidate, Caching::Revalidate},
        {{"/p/1", page, 1}, Caching::Never, Caching::Revalidate},
        {{"/data.json", "application/json", 1}, Caching::Never, Caching::Revalidate},
        {{"/api/i.0123abcd.json", "application/json", 1}, Caching::Never, Caching::Forever},
        {{"/office-config/1", script, 1}, Caching::Never, Caching::Revalidate},
    };
    for (const auto& entry : cases) {
        EXPECT_EQ(cachingOfHandlerAnswer(entry.content), entry.ofHandler)
            << entry.content.path << entry.content.size;
        EXPECT_EQ(cachingOfFile(entry.content), entry.ofFile) << entry.content.path << entry.content.size;
    }
    EXPECT_EQ(contentTag("a"), contentTag(QByteArray(1, 'a')));
    EXPECT_NE(contentTag("a"), contentTag("b"));
}

TEST(GatewayRules, CredentialsMustMatchExactly)
{
    const Credentials credentials;
    const std::string pair =
        QByteArray::fromStdString(credentials.user() + ':' + credentials.password()).toBase64().toStdString();
    EXPECT_TRUE(credentials.accept("Basic " + pair));
    EXPECT_TRUE(credentials.accept("basic  " + pair));
    EXPECT_FALSE(credentials.accept(""));
    EXPECT_FALSE(credentials.accept("Basic "));
    EXPECT_FALSE(credentials.accept(pair));
    EXPECT_FALSE(credentials.accept("Basic " + pair + "A"));
    EXPECT_FALSE(credentials.accept("Bearer " + pair));
    std::string other = "Basic " + pair;
    other[10] = other[10] == 'A' ? 'B' : 'A';
    EXPECT_FALSE(credentials.accept(other));
    EXPECT_NE(Credentials().password(), credentials.password());
}

TEST(GatewayRules, HandlerHeadersCannotBreakTheMessage)
{
    const QVariantMap headers = {
        {QStringLiteral("x-client-proxy"), QStringLiteral("true")},
        {QStringLiteral("X-Bytes"), QByteArrayLiteral("raw\r\nInjected: 1")},
        {QStringLiteral("Bad Name"), QStringLiteral("1")},
        {QStringLiteral("Evil\r\nSet-Cookie"), QStringLiteral("1")},
        {QStringLiteral("Content-Length"), QStringLiteral("999")},
        {QStringLiteral("transfer-encoding"), QStringLiteral("chunked")},
        {QStringLiteral("Proxy-Authenticate"), QStringLiteral("Basic")},
        {QStringLiteral("content-type"), QStringLiteral("text/plain")},
        {QStringLiteral("set-cookie"), QByteArrayLiteral("a=1; HttpOnly\nb=2\r; Path=/")},
    };
    const QVariantMap map = {{QStringLiteral("headerMap"), headers},
                             {QStringLiteral("resourceData"), QByteArrayLiteral("body")}};
    const Answer answer = handlerAnswer(map, "/a.js", {});
    EXPECT_EQ(answer.head, "HTTP/1.1 200 OK\r\nX-Bytes: rawInjected: 1\r\ncontent-type: text/plain\r\n"
                           "set-cookie: a=1; HttpOnly\r\nset-cookie: b=2; Path=/\r\nx-client-proxy: true\r\n"
                           "Cache-Control: no-store\r\nContent-Length: 4\r\n\r\n");

    AnswerForm head;
    head.headOnly = true;
    EXPECT_EQ(handlerAnswer(map, "/", head).bodyBytes, 0);
    head.connectionLine = "Connection: close\r\n";
    EXPECT_EQ(handlerAnswer({}, "/a.js", head).head,
              "HTTP/1.1 200 OK\r\nContent-Type: text/javascript; charset=utf-8\r\nCache-Control: no-store\r\n"
              "Content-Length: 0\r\nConnection: close\r\n\r\n");
}

TEST(GatewayRules, UpstreamHeadsCarryEndToEndFieldsOnly)
{
    const std::string text =
        "GET http://docs.example.test:8080/a?b HTTP/1.1\r\n"
        "Host: other.example.test\r\nAccept: */*\r\nProxy-Authorization: Basic x\r\n"
        "proxy-connection: keep-alive\r\nConnection: keep-alive, X-Private, Content-Length\r\n"
        "X-Private: 1\r\nKeep-Alive: 5\r\nTE: trailers\r\n" +
        std::string(RequestGateway::viewHeader) +
        ": 42\r\n"
        "Upgrade: h2c\r\nContent-Length: 0\r\n\r\n";
    RequestHead head;
    head.reset(text.size());
    RequestParser parser(head);
    boost::system::error_code error;
    parser.put(boost::asio::buffer(text), error);
    ASSERT_FALSE(error) << error.message();
    EXPECT_EQ(head.viewId, "42");

    const auto target = targetOfAbsoluteForm(head.target);
    EXPECT_EQ(
        upstreamRequestHead(head, *target, BodyFraming::None, false),
        "GET /a?b HTTP/1.1\r\nHost: docs.example.test:8080\r\nAccept: */*\r\nContent-Length: 0\r\n\r\n");
    EXPECT_THAT(upstreamRequestHead(head, *target, BodyFraming::Chunked, false),
                AllOf(HasSubstr("Transfer-Encoding: chunked\r\n"), Not(HasSubstr("Content-Length"))));
    EXPECT_THAT(upstreamRequestHead(head, *target, BodyFraming::None, true),
                AllOf(HasSubstr("Upgrade: h2c\r\n"), HasSubstr("Connection: Upgrade\r\n")));
}

TEST(GatewayRules, NewestHandlerComesFirstAndLongestDirectoryWins)
{
    ViewRegistry registry;
    const std::string view = registry.open();
    const NxResourceHandler handler = [](const auto&) { return true; };
    registry.addHandlers(view,
                         {{QStringLiteral("http://a/"), handler}, {QStringLiteral("http://b/"), handler}});
    registry.addHandlers(view,
                         {{QStringLiteral("http://c/"), handler}, {QStringLiteral("http://a/"), handler}});
    const auto prefixes = [&] {
        std::vector<std::string> result;
        for (const auto& entry : registry.routes(view)->handlers)
            result.push_back(entry->urlPrefix);
        return result;
    };
    EXPECT_THAT(prefixes(), testing::ElementsAre("http://a/", "http://c/", "http://b/", "http://a/"));
    registry.removeHandlers(view, {QStringLiteral("http://a/")});
    EXPECT_THAT(prefixes(), testing::ElementsAre("http://c/", "http://b/"));

    registry.setDirectory(view, "http://a/", "/short");
    registry.setDirectory(view, "http://a/b/", "/long");
    registry.setDirectory(view, "http://a/b/", "/replaced");
    EXPECT_EQ(registry.routes(view)->directoryFor("http://a/b/c")->directory, "/replaced");
    EXPECT_EQ(registry.routes(view)->directoryFor("http://a/c")->directory, "/short");
    EXPECT_EQ(registry.routes(view)->directoryFor("http://z/c"), nullptr);

    registry.close(view);
    EXPECT_EQ(registry.routes(view), nullptr);
    EXPECT_FALSE(registry.publish(view, "http://a/", {}));
}
