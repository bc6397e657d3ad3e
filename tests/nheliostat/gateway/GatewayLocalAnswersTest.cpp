#include "support/OriginServer.h"
#include "support/ProxyClient.h"
#include "support/RecordLog.h"

#include "gateway/RequestGateway.h"

#include <boost/beast/http/field.hpp>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdio>

namespace http = boost::beast::http;

namespace {

const std::string base = "http://docs.example.test/static/";

class GatewayLocalAnswers : public testing::Test
{
protected:
    GatewayLocalAnswers()
    {
        GatewayOptions options;
        options.resolve = {{QStringLiteral("docs.example.test"), m_origin.address()}};
        options.observer = m_records.observer();
        m_gateway = std::make_unique<RequestGateway>(options);
        m_view = m_gateway->openView();
        write(QStringLiteral("outside.txt"), "secret");
        QDir(m_directory.path()).mkpath(QStringLiteral("root/sub"));
        m_gateway->setLocalDirectory(m_view, QString::fromStdString(base), path(QStringLiteral("root")));
    }

    QString path(const QString& name) const { return m_directory.filePath(name); }
    void write(const QString& name, const QByteArray& content) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }
    ProxyClient client() { return ProxyClient(*m_gateway, m_view); }
    ProxyClient::Response get(const std::string& rest, const std::string& lines = {})
    {
        return client().get(base + rest, lines);
    }

    OriginServer m_origin{answering([](const auto&) { return okText("network"); })};
    RecordLog m_records;
    QTemporaryDir m_directory;
    std::unique_ptr<RequestGateway> m_gateway;
    QByteArray m_view;
};

} // namespace

TEST_F(GatewayLocalAnswers, FilesAreServedWithTheirTypeAndRevalidated)
{
    write(QStringLiteral("root/sub/a b.js"), "let x;");
    const auto file = get("sub/a%20b.js?v=1");
    EXPECT_EQ(file.result_int(), 200u);
    EXPECT_EQ(file.body(), "let x;");
    EXPECT_EQ(std::string(file[http::field::content_type]), "text/javascript; charset=utf-8");

    const std::string tag(file[http::field::etag]);
    const std::string date(file[http::field::last_modified]);
    EXPECT_EQ(get("sub/a%20b.js", "If-None-Match: W/\"x\", " + tag + "\r\n").result_int(), 304u);
    EXPECT_EQ(get("sub/a%20b.js", "If-Modified-Since: " + date + "\r\n").result_int(), 304u);
    EXPECT_EQ(
        get("sub/a%20b.js", "If-None-Match: \"other\"\r\nIf-Modified-Since: " + date + "\r\n").result_int(),
        200u);
    EXPECT_EQ(get("sub/a%20b.js", "If-Modified-Since: Thu, 01 Jan 1970 00:00:00 GMT\r\n").result_int(), 200u);

    ProxyClient browser = client();
    browser.send("HEAD", base + "sub/a%20b.js");
    const auto head = browser.receive(true);
    EXPECT_EQ(std::string(head[http::field::content_length]), "6");
    browser.send("POST", base + "sub/a%20b.js", {}, "body");
    EXPECT_EQ(browser.receive().body(), "network");
}

TEST_F(GatewayLocalAnswers, AFileReplacedByOneOfItsSizeAndTimeIsSentAnew)
{
    const std::string file = path(QStringLiteral("root/app.js")).toStdString();
    const std::string unpacked = path(QStringLiteral("root/new")).toStdString();
    const auto unpack = [&](const QByteArray& content) {
        write(QStringLiteral("root/new"), content);
        const timespec times[] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, unpacked.c_str(), times, 0), 0);
        ASSERT_EQ(std::rename(unpacked.c_str(), file.c_str()), 0);
    };
    unpack("version 1");
    const auto first = get("app.js");
    EXPECT_EQ(std::string(first[http::field::cache_control]), "no-cache");
    const std::string known = "If-None-Match: " + std::string(first[http::field::etag]) + "\r\n";
    EXPECT_EQ(get("app.js", known).result_int(), 304u);
    unpack("version 2");
    EXPECT_EQ(get("app.js", known).body(), "version 2");

    write(QStringLiteral("root/app.0123abcd.js"), "x");
    write(QStringLiteral("root/none.0123abcd.js"), "");
    EXPECT_EQ(std::string(get("app.0123abcd.js")[http::field::cache_control]),
              "public, max-age=31536000, immutable");
    EXPECT_EQ(std::string(get("none.0123abcd.js")[http::field::cache_control]), "no-store");
}

TEST_F(GatewayLocalAnswers, NothingOutsideTheDirectoryIsServed)
{
    write(QStringLiteral("root/inside.txt"), "inside");
    QFile::link(path(QStringLiteral("root/inside.txt")), path(QStringLiteral("root/good")));
    QFile::link(path(QStringLiteral("outside.txt")), path(QStringLiteral("root/bad")));
    QFile::link(m_directory.path(), path(QStringLiteral("root/up")));
    ASSERT_EQ(::mkfifo(QFile::encodeName(path(QStringLiteral("root/pipe"))).constData(), 0600), 0);
    EXPECT_EQ(get("good").body(), "inside");
    for (const char* rest : {"bad", "up/outside.txt", "../outside.txt", "%2e%2e/outside.txt", "missing",
                             "sub", "", "pipe", "inside.txt/"})
        EXPECT_EQ(get(rest).result_int(), 404u) << rest;
    EXPECT_EQ(client().get("http://docs.example.test/staticfile").body(), "network");

    m_gateway->removeLocalDirectory(m_view, QString::fromStdString(base));
    EXPECT_EQ(get("inside.txt").body(), "network");
}

TEST_F(GatewayLocalAnswers, LargeFilesArriveWholeAndHandlersComeFirst)
{
    const QByteArray content(9 * 1024 * 1024 + 1, 'f');
    write(QStringLiteral("root/large.bin"), content);
    ProxyClient browser = client();
    for (int i = 0; i < 2; ++i)
        EXPECT_TRUE(browser.get(base + "large.bin").body() == content.toStdString());

    const NxResourceHandler handler = [](const IWebViewResourceProviderCallbackPtr& callback) {
        callback->complete({{QStringLiteral("resourceData"), QByteArrayLiteral("handler")}});
        return true;
    };
    m_gateway->addHandlers(m_view, {{QString::fromStdString(base), handler}});
    EXPECT_EQ(browser.get(base + "large.bin").body(), "handler");
}

TEST_F(GatewayLocalAnswers, RepliesAreGivenOnceToTheirView)
{
    const QUrl origin(QStringLiteral("HTTP://docs.example.test:80/some/page?x"));
    const QUrl url = m_gateway->publishReply(m_view, origin, "reply", "application/json");
    const std::string text = url.toEncoded().toStdString();
    EXPECT_THAT(text, testing::StartsWith("http://docs.example.test/.helio/reply/"));
    EXPECT_EQ(text.size(), std::string("http://docs.example.test/.helio/reply/").size() + 32);

    const QByteArray other = m_gateway->openView();
    EXPECT_EQ(ProxyClient(*m_gateway, other).get(text).result_int(), 404u);
    ProxyClient browser = client();
    browser.send("POST", text, {}, "x");
    EXPECT_EQ(browser.receive().result_int(), 404u);
    const auto first = browser.get(text);
    EXPECT_EQ(first.body(), "reply");
    EXPECT_EQ(std::string(first[http::field::cache_control]), "no-store");
    EXPECT_EQ(std::string(first[http::field::content_type]), "application/json");
    EXPECT_EQ(browser.get(text).result_int(), 404u);

    EXPECT_TRUE(m_gateway->publishReply(m_view, QUrl(QStringLiteral("file:///tmp")), "x", {}).isEmpty());
    m_gateway->closeView(other);
    EXPECT_TRUE(m_gateway->publishReply(other, origin, "x", {}).isEmpty());
}
