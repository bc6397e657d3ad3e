#include "BrowserFixture.h"

#include <QDateTime>
#include <QNetworkCookie>
#include <QTemporaryDir>

namespace {

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

class BrowserCookies : public BrowserTest
{
protected:
    struct Wish
    {
        const char* url;
        const char* cookie; //!< a "Set-Cookie" field
        bool isStored;
    };

    /** Sets all at once, then waits for every completion. */
    void set(const QVector<Wish>& wishes)
    {
        QVector<int> outcomes(wishes.size(), -1);
        for (int i = 0; i < wishes.size(); ++i) {
            const auto parsed = QNetworkCookie::parseCookies(wishes[i].cookie);
            browser->setCookie(QUrl(text(wishes[i].url)), parsed.value(0), [&outcomes, i](bool stored) {
                EXPECT_EQ(outcomes[i], -1) << "a second completion";
                outcomes[i] = stored;
            });
        }
        EXPECT_EQ(outcomes.count(-1), wishes.size()) << "completed from inside the call";
        ASSERT_TRUE(waitFor([&] { return !outcomes.contains(-1); }));
        for (int i = 0; i < wishes.size(); ++i)
            EXPECT_EQ(outcomes[i], int(wishes[i].isStored)) << wishes[i].url << ' ' << wishes[i].cookie;
    }
};

TEST_F(BrowserCookies, TellWhetherTheyWereStored)
{
    // The same name and value for several hosts: each has an outcome of its own.
    set({{"http://foreign.test/", "k=1; Domain=echo.test", false},
         {"http://echo.test/", "k=1; Domain=echo.test; Path=/; HttpOnly", true},
         {"http://echo.test/", "k=1; Domain=other.test", false},
         {"https://other.test/", "k=1; Secure; Path=/", true},
         {"http://echo.test/", "secret=1; Secure", false},
         {"http://echo.test/", "", false},
         {"no url", "k=1", false}});
    set({{"http://echo.test/", "k=1; Domain=echo.test; Path=/; HttpOnly", true},
         {"http://echo.test/", "empty=; Path=/", true},
         {"http://echo.test/", "gone=1; Path=/; Expires=Sun, 06 Nov 1994 08:49:37 GMT", true}});
    ASSERT_TRUE(load(text("http://echo.test/page")));
    const QString head = evaluate(text("return document.body.innerText")).toString();
    EXPECT_TRUE(head.contains(text("Cookie: k=1; empty="))) << qPrintable(head);
    EXPECT_EQ(evaluate(text("return document.cookie")).toString(), text("empty="));
}

TEST_F(BrowserCookies, AreThoseOfTheFirstNamedProfileWhereNoneIsNamed)
{
    const QTemporaryDir directory;
    auto& store = environment();
    QWebEngineProfile* const unnamed = store.profile({}, {});
    QWebEngineProfile* const named =
        store.profile(directory.filePath(text("a")), directory.filePath(text("b")));
    EXPECT_NE(unnamed, named);
    EXPECT_EQ(store.profile(directory.filePath(text("a")), directory.filePath(text("b/"))), named);
    EXPECT_NE(store.profile(directory.filePath(text("c")), {}), named);
    EXPECT_EQ(store.profile({}, {}), named);
}

} // namespace
