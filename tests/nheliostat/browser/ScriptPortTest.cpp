#include "nheliostat/browser/ScriptPort.h"
#include "zeolite/NxWebViewAsynJSObject.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace nheliostat::browser;

namespace {

const QString origin = QStringLiteral("https://docs.skyleaf.test");

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

/** Records the calls it gets; what it does meanwhile is up to the test. */
class FakeScriptObject final : public NxWebViewAsynJSObject
{
public:
    FakeScriptObject()
        : NxWebViewAsynJSObject(nullptr)
    {
    }
    void fromJSAsynCall(const QString& call) override
    {
        calls << call;
        if (onCall)
            onCall();
    }

    QStringList calls;
    std::function<void()> onCall;
};

class ScriptPortTest : public testing::Test
{
protected:
    ScriptPortTest() { port.setScriptObject(&object); }

    struct Document
    {
        QString token;
        QString prefix;
    };
    /** A document of the origin that has said hello. */
    Document shownDocument()
    {
        port.awaitDocument(origin);
        return greetingDocument();
    }
    Document greetingDocument()
    {
        ++documents;
        const Document document{QStringLiteral("token%1").arg(documents),
                                QStringLiteral("%1-").arg(documents)};
        port.hello(port.secret(), origin, document.token, document.prefix);
        return document;
    }

    int documents = 0;
    QVector<QByteArray> published;
    bool canPublish = true;
    ScriptPort port{[this](const QString&, const QByteArray& body, const QByteArray&) {
        published << body;
        return canPublish ? QUrl(QStringLiteral("https://docs.skyleaf.test/once/%1").arg(published.size()))
                          : QUrl();
    }};
    FakeScriptObject object;
    QSignalSpy messages{&port, &ScriptPort::message};
};

} // namespace

TEST_F(ScriptPortTest, TakesOnlyTheTokenOfTheCurrentDocument)
{
    const Document first = shownDocument();
    port.fromJSAsynCall(first.token, text("one"));
    // The first document is shown until the second one speaks.
    port.awaitDocument(origin);
    port.fromJSAsynCall(first.token, text("two"));
    const Document second = greetingDocument();
    port.fromJSAsynCall(second.token, text("three"));
    for (const QString& token : {first.token, QString(), second.prefix, port.secret()})
        EXPECT_EQ(port.fromJSAsynCall(token, text("no")).value(0), text("x")) << qPrintable(token);
    EXPECT_EQ(object.calls, (QStringList{text("one"), text("two"), text("three")}));
}

TEST_F(ScriptPortTest, WelcomesOnlyExpectedDocumentsThatKnowTheSecret)
{
    const auto isWelcome = [this](const QString& secret, const QString& from, const QString& token) {
        port.hello(secret, from, token, text("p-"));
        return port.fromJSAsynCall(token, text("call")).value(0) != text("x");
    };
    EXPECT_FALSE(isWelcome(port.secret(), origin, text("a"))) << "not awaited";
    port.awaitDocument(origin);
    EXPECT_FALSE(isWelcome(text("guess"), origin, text("a")));
    EXPECT_FALSE(isWelcome(port.secret(), text("https://elsewhere.test"), text("a")));
    EXPECT_FALSE(isWelcome(port.secret(), origin, QString()));
    EXPECT_TRUE(isWelcome(port.secret(), origin, text("a")));
    // The same origin may begin anew, until the document is gone.
    EXPECT_TRUE(isWelcome(port.secret(), origin, text("b")));
    port.forgetDocument();
    port.awaitDocument(QString());
    EXPECT_FALSE(isWelcome(port.secret(), origin, text("c")));
}

TEST_F(ScriptPortTest, ReturnsWhatIsDeliveredDuringTheCallInOrder)
{
    const Document document = shownDocument();
    const QString id = document.prefix + QLatin1Char('1');
    object.onCall = [this, id] {
        port.raiseEvent(text("before"), text("data"));
        port.resolveCall(id, "{}");
        port.callFunction(text("after"), text("{}"));
    };
    const QStringList expected{text("e"),  text("before"), text("data"),  text("r"), id,
                               text("{}"), text("f"),      text("after"), text("{}")};
    EXPECT_EQ(port.fromJSAsynCall(document.token, text("call")), expected);
    EXPECT_TRUE(messages.isEmpty());

    port.rejectCall(id, text("late"));
    ASSERT_EQ(messages.size(), 1);
    EXPECT_EQ(messages[0], (QVariantList{text("x"), id, text("late")}));
}

TEST_F(ScriptPortTest, SettlesAnUnnamedCallOnlyWhileItIsTaken)
{
    const Document document = shownDocument();
    port.rejectCall(QString(), text("nobody asked"));
    EXPECT_TRUE(messages.isEmpty());
    object.onCall = [this] { port.rejectCall(QString(), text("malformed")); };
    EXPECT_EQ(port.fromJSAsynCall(document.token, text("?")),
              (QStringList{text("x"), QString(), text("malformed")}));
}

TEST_F(ScriptPortTest, DropsWhatIsAddressedToAnotherDocument)
{
    const Document old = shownDocument();
    port.setShownOrigin(text("https://elsewhere.test"));
    port.raiseEvent(text("secret"), text("data"));
    port.setShownOrigin(origin);
    shownDocument();
    port.resolveCall(old.prefix + QLatin1Char('1'), "{}");
    port.forgetDocument();
    port.callFunction(text("gone"), text("{}"));
    EXPECT_TRUE(messages.isEmpty());
    EXPECT_TRUE(published.isEmpty());
}

TEST_F(ScriptPortTest, PublishesLargeTextsAndSendsThemWhereItCannot)
{
    const Document document = shownDocument();
    const QString id = document.prefix + QLatin1Char('1');
    const QByteArray limit(ScriptPort::largeText, 'a');
    const QByteArray large = limit + 'b';
    port.resolveCall(id, limit);
    EXPECT_TRUE(published.isEmpty());
    port.resolveCall(id, large);
    port.raiseEvent(text("e"), QString::fromUtf8(large));
    port.callFunction(text("f"), QString::fromUtf8(large));
    EXPECT_EQ(published, (QVector<QByteArray>{large, large, large}));
    ASSERT_EQ(messages.size(), 4);
    EXPECT_EQ(messages[1][0].toString() + messages[2][0].toString() + messages[3][0].toString(), text("REF"));
    EXPECT_EQ(messages[1][2].toString(), text("https://docs.skyleaf.test/once/1"));

    canPublish = false;
    port.resolveCall(id, large);
    EXPECT_EQ(messages.last(), (QVariantList{text("r"), id, QString::fromUtf8(large)}));
}

TEST_F(ScriptPortTest, RefusesCallsWithoutAScriptObject)
{
    const Document document = shownDocument();
    port.setScriptObject(nullptr);
    EXPECT_EQ(port.fromJSAsynCall(document.token, text("call")),
              (QStringList{text("x"), QString(), text("no script object")}));
    port.emitHost(document.token, text("webFileReady"), text("{}"));
}
