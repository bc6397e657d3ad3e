#include "shell/config/HostFile.h"
#include "shell/config/SessionCookie.h"
#include "shell/config/UserMembers.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include "support/OddFiles.h"

#include <memory>

namespace {

using shell::HostFile;
using testing::HasSubstr;

shell::Result<HostFile> parse(const QByteArray& text)
{
    return shell::parseHostFile(text, QStringLiteral("/deployment"));
}

TEST(HostFile, AnEmptyOneIsTheDemo)
{
    const auto host = parse("{}");
    ASSERT_TRUE(host);
    for (const char* key : {"quill", "quill_api", "quill_api_spec"})
        EXPECT_EQ(host->domains.value(QLatin1String(key)), QStringLiteral("https://docs.skyleaf.test"))
            << key;
    EXPECT_EQ(host->resolve.value(QStringLiteral("drive.skyleaf.test:80")),
              QStringLiteral("127.0.0.1:18080"));
    EXPECT_EQ(host->scriptOrigins(), QStringList({QStringLiteral("https://docs.skyleaf.test"),
                                                  QStringLiteral("https://drive.skyleaf.test")}));
    EXPECT_TRUE(host->interceptedHosts().contains(QStringLiteral("docs.skyleaf.test")));
    EXPECT_TRUE(host->user.loggedIn);
    EXPECT_EQ(host->user.sessionKey, QStringLiteral("demo-session"));
    EXPECT_EQ(host->applicationName, QStringLiteral("skyleaf-shell"));
}

TEST(HostFile, EveryMemberArrives)
{
    const auto host = parse(R"({
        "domains": {"quill": "http://docs.example.test:8080/base", "extra": "https://x.example.test", "drive": null},
        "resolve": {"docs.example.test:8080": "127.0.0.1:4711", "v6.example.test": "[::1]:80",
                    "docs.skyleaf.test:80": null},
        "mainDomain": "example.test", "documentsServiceHost": "docs.example.test", "intranet": true,
        "configCentre": {"60": {"57911": {"unsed_page_lifetime": 3}}},
        "productSwitches": {"syncAssist": true}, "features": {"IntranetVersion": false},
        "settings": {"discardPage/inactivatePageDiscardTime": 5, "6.0/name": "x"},
        "capabilities": 4294967295,
        "user": {"loggedIn": true, "userId": "77", "sessionKey": "k", "cookies": "a=b", "cacheRoot": "cache"},
        "plugins": {"quillw": {"path": "packages/w", "upgradePath": "/abs/w2"}},
        "application": {"name": "office", "version": "9.1", "channel": "beta"}})");
    ASSERT_TRUE(host) << host.error().text.toStdString();
    EXPECT_EQ(host->domains.value(QStringLiteral("quill_api")), QStringLiteral("https://docs.skyleaf.test"));
    EXPECT_FALSE(host->domains.contains(QStringLiteral("drive")));
    EXPECT_EQ(host->scriptOrigins(), QStringList(QStringLiteral("http://docs.example.test:8080")));
    EXPECT_FALSE(host->interceptedHosts().contains(QStringLiteral("docs.example.test")));
    EXPECT_EQ(host->resolve.value(QStringLiteral("v6.example.test")), QStringLiteral("[::1]:80"));
    EXPECT_FALSE(host->resolve.contains(QStringLiteral("docs.skyleaf.test:80")));
    EXPECT_TRUE(host->intranet);
    EXPECT_TRUE(host->productSwitches.value(QStringLiteral("syncAssist")));
    EXPECT_TRUE(host->features.contains(QStringLiteral("IntranetVersion")));
    EXPECT_EQ(host->settings.value(QStringLiteral("discardPage/inactivatePageDiscardTime")).toInt(), 5);
    EXPECT_EQ(host->capabilities, 4294967295U);
    EXPECT_EQ(host->user.userId, QStringLiteral("77"));
    EXPECT_EQ(host->user.cacheRoot, QStringLiteral("/deployment/cache"));
    EXPECT_TRUE(host->user.localDataDir.isEmpty());
    EXPECT_EQ(host->plugins.value(QStringLiteral("quillw")).path, QStringLiteral("/deployment/packages/w"));
    EXPECT_EQ(host->plugins.value(QStringLiteral("quillw")).upgradePath, QStringLiteral("/abs/w2"));
    EXPECT_EQ(host->channel, QStringLiteral("beta"));
}

struct Mistake
{
    const char* text;
    const char* named;
};

class HostFileMistakes : public testing::TestWithParam<Mistake>
{
};

TEST_P(HostFileMistakes, AreNamed)
{
    const auto host = parse(GetParam().text);
    ASSERT_FALSE(host) << GetParam().text;
    EXPECT_THAT(host.error().text.toStdString(), HasSubstr(GetParam().named));
    EXPECT_THAT(host.error().text.toStdString(), testing::StartsWith("host file: "));
}

INSTANTIATE_TEST_SUITE_P(
    Table, HostFileMistakes,
    testing::Values(
        Mistake{"", "no JSON"}, Mistake{"{\"domains\": }", "at byte"}, Mistake{"[]", "a JSON object"},
        Mistake{R"({"configcentre": {}})", "unknown member \"configcentre\""},
        Mistake{R"({"domains": []})", "\"domains\" must be an object"},
        Mistake{R"({"domains": {"quill": 1}})", "\"domains.quill\" must be an http or https URL"},
        Mistake{R"({"domains": {"quill": "ftp://docs.example.test"}})", "\"domains.quill\""},
        Mistake{R"({"domains": {"quill": "https://"}})", "\"domains.quill\""},
        Mistake{R"({"domains": {"quill": "docs.example.test"}})", "\"domains.quill\""},
        Mistake{R"({"resolve": {"a.test": "127.0.0.1"}})", "\"resolve.a.test\" must be \"address:port\""},
        Mistake{R"({"resolve": {"a.test": "127.0.0.1:0"}})", "\"resolve.a.test\""},
        Mistake{R"({"resolve": {"a.test": "127.0.0.1:65536"}})", "\"resolve.a.test\""},
        Mistake{R"({"resolve": {"a.test": "::1:80"}})", "\"resolve.a.test\""},
        Mistake{R"({"intranet": "yes"})", "\"intranet\" must be true or false"},
        Mistake{R"({"mainDomain": null})", "\"mainDomain\" must be a text"},
        Mistake{R"({"configCentre": {"sixty": {}}})", "\"configCentre.sixty\""},
        Mistake{R"({"configCentre": {"60": {"x": {}}}})", "\"configCentre.60.x\""},
        Mistake{R"({"configCentre": {"60": {"1": true}}})", "\"configCentre.60.1\" must be an object"},
        Mistake{R"({"productSwitches": {"a": 1}})", "\"productSwitches.a\" must be true or false"},
        Mistake{R"({"settings": {"noGroup": 1}})", "\"settings.noGroup\""},
        Mistake{R"({"capabilities": -1})", "\"capabilities\" must be an integer"},
        Mistake{R"({"capabilities": 1.5})", "\"capabilities\""},
        Mistake{R"({"user": {"skin": "dark"}})", "unknown member \"user.skin\""},
        Mistake{R"({"user": {"loggedIn": 1}})", "\"user.loggedIn\" must be true or false"},
        Mistake{R"({"plugins": {"w": {"dir": "x"}}})", "unknown member \"plugins.w.dir\""},
        Mistake{R"({"plugins": {"w": "x"}})", "\"plugins.w\" must be an object"},
        Mistake{R"({"application": {"version": 1}})", "\"application.version\" must be a text"}));

TEST(HostFile, IsReadFromDiskAndNamedWhenItCannotBe)
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("host.json"));
    const auto missing = shell::loadHostFile(path);
    ASSERT_FALSE(missing);
    EXPECT_THAT(missing.error().text.toStdString(), HasSubstr(path.toStdString()));
    EXPECT_FALSE(shell::loadHostFile(dir.path())) << "a directory is no file";

    for (const OddFile& odd : oddFiles) {
        const QString place = dir.filePath(QLatin1String(odd.name));
        ASSERT_TRUE(putOddFile(odd, place));
        const auto refused = shell::loadHostFile(place);
        ASSERT_FALSE(refused) << odd.name;
        EXPECT_THAT(refused.error().text.toStdString(), HasSubstr(odd.name));
    }

    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(R"({"plugins": {"w": {"path": "w"}}})");
    file.close();
    const auto host = shell::loadHostFile(path);
    ASSERT_TRUE(host);
    EXPECT_EQ(host->path, path);
    EXPECT_EQ(host->plugins.value(QStringLiteral("w")).path, dir.filePath(QStringLiteral("w")));
}

TEST(HostFile, OfManyDomainsTheSuitesOwnAreAnsweredLocally)
{
    QByteArray domains;
    constexpr int count = 50000;
    for (int i = 0; i < count; ++i) {
        const QByteArray number = QByteArray::number(i);
        domains += "\"a" + number + "\": \"https://a" + number + ".test\",";
    }
    QElapsedTimer watch;
    watch.start();
    const auto host = parse("{\"domains\": {" + domains + "\"quill\": \"https://own.test\"}}");
    ASSERT_TRUE(host);
    EXPECT_GT(host->domains.size(), count);
    const QStringList hosts = host->interceptedHosts();
    EXPECT_EQ(hosts.size(), HostFile::mostInterceptedHosts);
    for (const char* own : {"own.test", "drive.skyleaf.test", "skyleaf.test"})
        EXPECT_TRUE(hosts.contains(QLatin1String(own))) << own;
    EXPECT_LT(watch.elapsed(), 10000);
}

TEST(UserMembers, MergeIsAllOrNothing)
{
    shell::HostUser user;
    user.userId = QStringLiteral("1");
    user.cookies = QStringLiteral("a=b");
    EXPECT_EQ(shell::mergeUser({{QStringLiteral("loggedIn"), true}}, user), QString());
    EXPECT_TRUE(user.loggedIn);
    EXPECT_EQ(user.cookies, QStringLiteral("a=b"));

    const QString error =
        shell::mergeUser({{QStringLiteral("cookies"), QString()}, {QStringLiteral("userId"), 5}}, user);
    EXPECT_THAT(error.toStdString(), HasSubstr("\"userId\" must be a text"));
    EXPECT_EQ(user.cookies, QStringLiteral("a=b"));
}

TEST(SessionCookie, GoesBehindTheUsersOwnCookies)
{
    const struct
    {
        const char* cookies;
        const char* key;
        const char* sent;
    } cases[] = {{"", "k", "vlt_sid=k;"},
                 {"a=b", "k", "a=b; vlt_sid=k;"},
                 {" a=b ;; ", "k", "a=b; vlt_sid=k;"},
                 {"xvlt_sid=1", "k", "xvlt_sid=1; vlt_sid=k;"},
                 {"a=b; vlt_sid=own", "k", "a=b; vlt_sid=own"},
                 {"a=b", "", "a=b"},
                 {"a=b", "k;Path=/", "a=b"},
                 {"a=b", "k\r\nX: y", "a=b"}};
    for (const auto& entry : cases) {
        const QString cookies = QString::fromUtf8(entry.cookies);
        const QString key = QString::fromUtf8(entry.key);
        const QString sent = shell::withSessionCookie(cookies, key);
        EXPECT_EQ(sent, QString::fromUtf8(entry.sent)) << entry.cookies << ' ' << entry.key;
        EXPECT_EQ(shell::withSessionCookie(shell::withoutSessionCookie(sent, key), key), sent);
    }
    EXPECT_EQ(shell::withoutSessionCookie(QStringLiteral("vlt_sid=k;"), QStringLiteral("k")), QString());
    EXPECT_EQ(shell::withoutSessionCookie(QStringLiteral("vlt_sid=k;"), QStringLiteral("x")),
              QStringLiteral("vlt_sid=k;"));
}

} // namespace
