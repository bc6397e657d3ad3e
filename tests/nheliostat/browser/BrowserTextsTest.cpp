#include "nheliostat/browser/BrowserOrigin.h"
#include "nheliostat/browser/ChromiumFlags.h"
#include "nheliostat/browser/NetErrors.h"
#include "nheliostat/browser/ResourceRegistrations.h"
#include "nheliostat/browser/StartupPages.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include "support/OddFiles.h"

#include <gtest/gtest.h>

using namespace nheliostat::browser;

namespace {

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

} // namespace

TEST(BrowserOrigin, NamesOnlyWebOriginsAndLeavesOutDefaultPorts)
{
    const struct
    {
        const char* url;
        const char* origin;
    } cases[] = {
        {"https://docs.skyleaf.test/p/1?x#y", "https://docs.skyleaf.test"},
        {"HTTPS://Docs.Skyleaf.Test:443/", "https://docs.skyleaf.test"},
        {"https://docs.skyleaf.test:8443/", "https://docs.skyleaf.test:8443"},
        {"http://docs.skyleaf.test:443/", "http://docs.skyleaf.test:443"},
        {"https://user:pw@docs.skyleaf.test/", "https://docs.skyleaf.test"},
        {"https://docs.skyleaf.test.evil.test/", "https://docs.skyleaf.test.evil.test"},
        {"blob:https://docs.skyleaf.test/1", ""},
        {"data:text/html,x", ""},
        {"file:///etc/passwd", ""},
        {"about:blank", ""},
        {"", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(originOf(QUrl(text(c.url))), text(c.origin)) << c.url;
}

TEST(BrowserOrigin, KnowsWhichHostsTheGatewayAnswers)
{
    const QStringList intercepted{text("docs.skyleaf.test")};
    EXPECT_TRUE(isAnsweredLocally(QUrl(text("https://docs.skyleaf.test")), intercepted));
    EXPECT_TRUE(isAnsweredLocally(QUrl(text("http://other.test")), intercepted));
    for (const char* url : {"https://other.test", "http://localhost:80", "http://a.localhost",
                            "http://127.0.0.1:8080", "http://[::1]/", "file:///x"})
        EXPECT_FALSE(isAnsweredLocally(QUrl(text(url)), intercepted)) << url;
}

TEST(SchemeUse, HandsOverOnlySupportedSchemes)
{
    const QStringList supported{text("weixin")};
    EXPECT_EQ(schemeUse(text("https"), supported), SchemeUse::Browser);
    EXPECT_EQ(schemeUse(text("file"), supported), SchemeUse::Browser);
    EXPECT_EQ(schemeUse(text("weixin"), supported), SchemeUse::HandOver);
    EXPECT_EQ(schemeUse(text("ssh"), supported), SchemeUse::Ignore);
}

TEST(ChromiumFlags, KeepWhatTheUserSetAndUniteFeatures)
{
    const QStringList wanted{text("--disable-gpu"), text("--disable-features=B,C"), text("--lang=en")};
    EXPECT_EQ(mergedChromiumFlags(QString(), wanted), text("--disable-gpu --disable-features=B,C --lang=en"));
    EXPECT_EQ(mergedChromiumFlags(text(" --lang=de   --disable-features=A,B"), wanted),
              text("--lang=de --disable-features=A,B,C --disable-gpu"));
    EXPECT_FALSE(wantedChromiumFlags(false).contains(text("--disable-gpu")));
    EXPECT_TRUE(wantedChromiumFlags(true).contains(text("--disable-gpu")));
}

TEST(NetErrors, ReadTheErrorPageText)
{
    const struct
    {
        const char* text;
        int code;
    } cases[] = {{"ERR_CONNECTION_REFUSED", -102},
                 {"DNS_PROBE_FINISHED_NXDOMAIN", -105},
                 {"HTTP ERROR 502", 502},
                 {"ERR_SOMETHING_NEW", -2},
                 {"", -2}};
    for (const auto& c : cases)
        EXPECT_EQ(netErrorFromText(text(c.text)).code, c.code) << c.text;
    EXPECT_EQ(netErrorFromText(text("ERR_SOMETHING_NEW")).message, text("ERR_SOMETHING_NEW"));
    EXPECT_NE(explained({-105, {}}), explained({-102, {}}));
}

TEST(StartupPages, KeepOnePagePerUrlAndSurviveBadFiles)
{
    const QTemporaryDir directory;
    const QString file = directory.filePath(text("deep/startup.json"));
    EXPECT_TRUE(readStartupPages(file).isEmpty());
    EXPECT_TRUE(addStartupPage(file, {text("https://a.test/"), text("A")}));
    EXPECT_TRUE(addStartupPage(file, {text("https://b.test/"), text("B")}));
    EXPECT_TRUE(addStartupPage(file, {text("https://a.test/"), text("A2")}));
    const QVector<StartupPage> pages = readStartupPages(file);
    ASSERT_EQ(pages.size(), 2);
    EXPECT_EQ(pages[0].title, text("A2"));
    EXPECT_EQ(pages[1].url, text("https://b.test/"));

    QFile broken(file);
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("[{\"url\": 3}, 4");
    broken.close();
    EXPECT_TRUE(readStartupPages(file).isEmpty());
    for (const OddFile& odd : oddFiles) {
        const QString place = directory.filePath(text(odd.name));
        ASSERT_TRUE(putOddFile(odd, place));
        EXPECT_TRUE(readStartupPages(place).isEmpty()) << odd.name;
    }
    EXPECT_FALSE(addStartupPage(text("/proc/nowhere/startup.json"), {text("https://a.test/"), {}}));
}

TEST(ResourceRegistrations, FindFaviconsBelowTheirDirectoryOnly)
{
    const QTemporaryDir directory;
    ASSERT_TRUE(QDir(directory.path()).mkpath(text("icons")));
    for (const QString& name : {text("icons/a.png"), text("secret.png")}) {
        QFile file(directory.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    ResourceRegistrations registrations;
    const NHelioLocalPathPair pair(text("https://docs.skyleaf.test/icons/"),
                                   directory.filePath(text("icons")));
    registrations.addFavicons({pair});
    EXPECT_TRUE(registrations.faviconFile(text("https://docs.skyleaf.test/icons/a.png?v=1"))
                    .endsWith(text("/a.png")));
    EXPECT_TRUE(registrations.faviconFile(text("https://docs.skyleaf.test/icons/../secret.png")).isEmpty());
    EXPECT_TRUE(registrations.faviconFile(text("https://docs.skyleaf.test/icons/none.png")).isEmpty());
    EXPECT_TRUE(registrations.faviconFile(text("https://other.test/icons/a.png")).isEmpty());
    registrations.removeFavicons({pair});
    EXPECT_TRUE(registrations.faviconFile(text("https://docs.skyleaf.test/icons/a.png")).isEmpty());
}
