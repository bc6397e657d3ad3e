#include "service/StaticSite.h"

#include <QFile>

#include "support/ServiceTest.h"

namespace documents {
namespace {

TEST(StaticSite, neverLeavesItsDirectory)
{
    const TemporarySite place;
    place.add("site-other/a.txt", "outside");
    QFile::link(place.path("secret.txt"), place.path("site/static/link.txt"));
    QFile::link(place.path(""), place.path("site/static/up"));
    QFile::link(place.path("site/home.html"), place.path("site/static/inside.html"));
    const StaticSite site(place.site());
    for (const char* target : {"/../secret.txt", "/static/../../secret.txt", "/%2e%2e/secret.txt",
                               "/static/%2e%2e%2f%2e%2e%2fsecret.txt", "/..%5csecret.txt", "/static/link.txt",
                               "/static/up/secret.txt", "/../site-other/a.txt", "/static", "/static//app.css",
                               "/./home.html", "/"}) {
        const auto parsed = parseRequestTarget(target);
        ASSERT_TRUE(parsed) << target;
        EXPECT_FALSE(site.resolve(parsed->segments)) << target;
    }
    EXPECT_TRUE(site.resolve({QStringLiteral("static"), QStringLiteral("inside.html")}));
    EXPECT_FALSE(StaticSite(place.path("missing")).resolve({QStringLiteral("secret.txt")}));
}

TEST(StaticSite, knownFilesAreNotSentAgain)
{
    const TemporarySite place;
    const StaticSite site(place.site());
    const QStringList path{QStringLiteral("weboffice-static"), QStringLiteral("js"),
                           QStringLiteral("app.js")};
    const auto first = site.file(path, {});
    ASSERT_TRUE(first);
    EXPECT_EQ(first->body, QByteArray("script"));
    EXPECT_EQ(first->contentType, QByteArray("text/javascript; charset=utf-8"));
    const QByteArray tag = header(*first, "ETag");
    const QByteArray date = header(*first, "Last-Modified");

    const struct
    {
        QByteArray ifNoneMatch;
        QByteArray ifModifiedSince;
        int status;
    } cases[] = {
        {tag, {}, 304},
        {"\"x\", W/" + tag, {}, 304},
        {"*", {}, 304},
        {{}, date, 304},
        {{}, "Sun, 06 Nov 1994 08:49:37 GMT", 200},
        {{}, "yesterday", 200},
        {"\"x\"", date, 200},
    };
    for (const auto& entry : cases) {
        HttpRequest request;
        request.ifNoneMatch = entry.ifNoneMatch;
        request.ifModifiedSince = entry.ifModifiedSince;
        const auto reply = site.file(path, request);
        EXPECT_EQ(reply->status, entry.status)
            << entry.ifNoneMatch.constData() << entry.ifModifiedSince.constData();
        EXPECT_EQ(reply->body.isEmpty(), entry.status == 304);
        EXPECT_EQ(header(*reply, "ETag"), tag);
    }
    EXPECT_EQ(header(*first, "Cache-Control"), QByteArray("no-cache"));

    place.add("site/sw.js", "worker");
    place.add("site/static/sw.js", "no worker");
    const auto worker = site.file({QStringLiteral("sw.js")}, {});
    EXPECT_EQ(header(*worker, "Service-Worker-Allowed"), QByteArray("/"));
    EXPECT_EQ(header(*worker, "Cache-Control"), QByteArray("no-cache"));
    EXPECT_EQ(
        header(*site.file({QStringLiteral("static"), QStringLiteral("sw.js")}, {}), "Service-Worker-Allowed"),
        QByteArray());

    place.add("site/weboffice-static/js/app.js", "new script");
    EXPECT_NE(header(*site.file(path, {}), "ETag"), tag);
}

} // namespace
} // namespace documents
