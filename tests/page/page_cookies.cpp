#include "page/NHelioQuillPreviewPage.h"

#include "base/NClock.h"
#include "base/NReadOnce.h"
#include "nheliostat/NHelioCloudSvrProxy.h"
#include "page/ClientIdentity.h"
#include "support/LogRecorder.h"
#include "support/ShellFixture.h"

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

class PageCookies : public ShellFixture
{
protected:
    void SetUp() override
    {
        ShellFixture::SetUp();
        nreadonce::resetForTest();
        nclock::setNowForTest([this] { return now; });
        services.mainDomain = s("docs.TEST");
        services.userAgent = s("pc-office/1");
    }

    void TearDown() override
    {
        ShellFixture::TearDown();
        nclock::setNowForTest({});
    }

    /** An open page whose browser has forgotten the cookies of its creation. */
    FakeBrowserWidget* openPage()
    {
        page = new NHelioQuillPreviewPage(nullptr, true, false);
        window->centralArea()->addPage(page);
        turn();
        page->notify(s("https://docs.test/p/7"));
        page->load();
        turn();
        auto* browser = page->findChild<FakeBrowserWidget*>();
        browser->cookies.clear();
        return browser;
    }

    void signIn(const char* key)
    {
        NHelioUserInfo user;
        user.loggedIn = key != nullptr;
        user.userId = s("u");
        user.sessionKey = s(key);
        shell->setUser(user);
    }

    /** The cookies written since, "<URL> <name>=<value> <days> <flags>" in order. */
    QStringList written(FakeBrowserWidget* browser) const
    {
        QStringList lines;
        for (const auto& request : browser->cookies) {
            const QNetworkCookie& cookie = request.cookie;
            EXPECT_EQ(cookie.path(), s("/"));
            EXPECT_EQ(cookie.domain(), request.url.host());
            lines << s("%1 %2=%3 %4%5%6")
                         .arg(request.url.toString(), QString::fromLatin1(cookie.name()),
                              cookie.name() == "vltua" ? s("ua") : QString::fromLatin1(cookie.value()))
                         .arg(now.daysTo(cookie.expirationDate()))
                         .arg(cookie.isSecure() ? s(" secure") : QString(),
                              cookie.isHttpOnly() ? s(" http-only") : QString());
            if (cookie.name() == "vltua") {
                EXPECT_EQ(cookie.value(), clientidentity::tokenOf(s("pc-office/1")));
            }
        }
        browser->cookies.clear();
        return lines;
    }

    QDateTime now = QDateTime::fromMSecsSinceEpoch(1700000000000);
    NHelioQuillPreviewPage* page = nullptr;
};

TEST_F(PageCookies, GoToBothOriginsWithTheBranch)
{
    services.debugInfo = s(R"({"weboffice_branch": "b1"})");
    start();
    FakeBrowserWidget* browser = openPage();
    const auto expected = [](const char* session) {
        return QStringList{s("https://drive.test vlt_sid=%1 14 http-only").arg(s(session)),
                           s("https://drive.test vltua=ua 366"),
                           s("https://docs.test vlt_sid=%1 14 secure http-only").arg(s(session)),
                           s("https://docs.test vltua=ua 366"),
                           s("https://docs.test weboffice_branch=b1 14")};
    };
    signIn("k1");
    EXPECT_EQ(written(browser), expected("k1"));

    signIn(nullptr);
    EXPECT_EQ(written(browser), expected(""));
    browser->deliverLoadFinished(false);
    EXPECT_TRUE(written(browser).isEmpty());
    browser->deliverLoadFinished(true);
    EXPECT_EQ(written(browser).size(), 5);
}

TEST_F(PageCookies, IntranetsWithoutEncryptionGetAnInsecureSession)
{
    const struct
    {
        bool isIntranet;
        const char* account;
        bool isSecure;
    } cases[] = {{true, "http://account.test", false},
                 {true, "https://account.test", true},
                 {true, "", true},
                 {false, "http://account.test", true}};
    for (const auto& entry : cases) {
        runtime.features.insert(s("IntranetVersion"), entry.isIntranet);
        services.domains.insert(s("account"), s(entry.account));
        services.debugInfo = s("no JSON");
        start();
        FakeBrowserWidget* browser = openPage();
        signIn("k");
        const QStringList lines = written(browser);
        ASSERT_EQ(lines.size(), 4);
        EXPECT_EQ(lines[2].contains(s("secure")), entry.isSecure) << entry.isIntranet << entry.account;
        shell.reset();
        host.reset();
    }
}

TEST_F(PageCookies, AnAccountsSessionGoesToTheRoot)
{
    services.capabilities = 0x40000;
    services.domains.insert(s("root"), s("https://test/*"));
    start();
    FakeBrowserWidget* browser = openPage();
    signIn("k");
    const QStringList lines = written(browser);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0], s("https://test/ vlt_sid=k 14 http-only"));
    EXPECT_TRUE(lines[1].startsWith(s("https://test/ vltua=ua")));
}

TEST_F(PageCookies, RequestsToTheMainDomainGetTheSessionTheyNeed)
{
    start();
    FakeBrowserWidget* browser = openPage();
    signIn("k");
    browser->cookies.clear();
    EXPECT_FALSE(browser->deliverBeforeBrowser(s("https://sub.docs.test/x")));
    EXPECT_FALSE(browser->deliverBeforeBrowser(s("not a URL")));
    EXPECT_TRUE(written(browser).isEmpty());
    EXPECT_FALSE(browser->deliverBeforeBrowser(s("https://DOCS.test/x")));
    EXPECT_EQ(written(browser).value(0), s("https://docs.test/x vlt_sid=k 14 http-only"));

    signIn(nullptr);
    browser->cookies.clear();
    const LogRecorder log;
    browser->deliverBeforeBrowser(s("https://docs.test/x"));
    const QStringList lines = written(browser);
    ASSERT_EQ(lines.size(), 1);
    EXPECT_TRUE(lines[0].startsWith(s("https://docs.test/x vltua=ua")));
    EXPECT_TRUE(
        log.lines().contains(s("info [skyleaf] vlt_sid is empty--NHelioCloudDocsPage::_updateCookie")));
}

TEST_F(PageCookies, TheServersCookiesAreKeptAsTheyCame)
{
    start();
    FakeBrowserWidget* browser = openPage();
    const auto append = [this](const QByteArray& lines) {
        QMetaObject::invokeMethod(page, "onAppendResponseCookies",
                                  Q_ARG(QList<QNetworkCookie>, QNetworkCookie::parseCookies(lines)));
    };
    append("a=1; Domain=own.test\nb=2; Secure");
    append({});
    append("b=3");
    QStringList given;
    for (const auto& request : browser->container()->cookieRequests)
        given << request.url.path() + QLatin1Char(' ') + QString::fromLatin1(request.cookie.toRawForm());
    EXPECT_EQ(given, (QStringList{s("/p/7 a=1; domain=own.test"), s("/p/7 b=2; secure; domain=docs.test"),
                                  s("/p/7 a=1; domain=own.test"), s("/p/7 b=2; secure; domain=docs.test"),
                                  s("/p/7 b=3; domain=docs.test")}));
}

} // namespace
