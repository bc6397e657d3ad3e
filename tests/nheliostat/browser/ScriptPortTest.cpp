#include "nheliostat/browser/ScriptPort.h"
#include "zeolite/NxWebViewAsynJSObject.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

#include <memory>
#include <set>

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
        EXPECT_EQ(port.fromJSAsynCall(token, text("no")).mid(0, 2), (QStringList{token, text("x")}));
    EXPECT_EQ(object.calls, (QStringList{text("one"), text("two"), text("three")}));
}

TEST_F(ScriptPortTest, WelcomesOnlyExpectedDocumentsThatKnowTheSecret)
{
    const auto isWelcome = [this](const QString& secret, const QString& from, const QString& token) {
        port.hello(secret, from, token, text("p-"));
        return port.fromJSAsynCall(token, text("call")).value(1) != text("x");
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
    const QStringList expected{document.token, text("e"), text("before"), text("data"), text("r"), id,
                               text("{}"),     text("f"), text("after"),  text("{}")};
    EXPECT_EQ(port.fromJSAsynCall(document.token, text("call")), expected);
    EXPECT_TRUE(messages.isEmpty());

    port.rejectCall(id, text("late"));
    ASSERT_EQ(messages.size(), 1);
    EXPECT_EQ(messages[0], (QVariantList{document.token, text("x"), id, text("late")}));
}

TEST_F(ScriptPortTest, SettlesAnUnnamedCallOnlyWhileItIsTaken)
{
    const Document document = shownDocument();
    port.rejectCall(QString(), text("nobody asked"));
    EXPECT_TRUE(messages.isEmpty());
    object.onCall = [this] { port.rejectCall(QString(), text("malformed")); };
    EXPECT_EQ(port.fromJSAsynCall(document.token, text("?")),
              (QStringList{document.token, text("x"), QString(), text("malformed")}));
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

TEST_F(ScriptPortTest, NumbersDocumentsAndTellsOfTheirEnd)
{
    const QSignalSpy ends(&object, &NxWebViewAsynJSObject::documentEnded);
    EXPECT_EQ(port.document(), 0U);
    shownDocument();
    const quint64 first = port.document();
    EXPECT_NE(first, 0U);
    EXPECT_TRUE(ends.isEmpty());
    // An address on the way to elsewhere is no end, what was loaded there is.
    port.setShownOrigin(text("https://elsewhere.test"));
    port.awaitDocument(QString());
    EXPECT_EQ(port.document(), first);
    port.endHiddenDocument();
    EXPECT_EQ(port.document(), 0U);
    EXPECT_EQ(ends.size(), 1);

    shownDocument();
    port.endHiddenDocument();
    const quint64 second = port.document();
    shownDocument(); // a reload
    EXPECT_EQ(ends.size(), 2);
    EXPECT_EQ((std::set<quint64>{0, first, second, port.document()}).size(), 4U);
    port.forgetDocument();
    port.forgetDocument();
    EXPECT_EQ(ends.size(), 3);
}

TEST_F(ScriptPortTest, ReturnsNothingOfALaterDocumentWithTheCallOfAnEarlierOne)
{
    const Document first = shownDocument();
    Document second;
    object.onCall = [this, &second] {
        port.raiseEvent(text("e"), text("1"));
        second = shownDocument();
        port.raiseEvent(text("e"), text("2"));
        port.rejectCall(QString(), text("the call that is being taken is not of this document"));
    };
    EXPECT_EQ(port.fromJSAsynCall(first.token, text("call")),
              (QStringList{first.token, text("e"), text("e"), text("1")}));
    ASSERT_EQ(messages.size(), 1);
    EXPECT_EQ(messages[0], (QVariantList{second.token, text("e"), text("e"), text("2")}));
}

TEST_F(ScriptPortTest, MayGoWhileACallIsOut)
{
    auto closing = std::make_unique<ScriptPort>([](const auto&...) { return QUrl(); });
    closing->setScriptObject(&object);
    closing->awaitDocument(origin);
    closing->hello(closing->secret(), origin, text("t"), text("p-"));
    object.onCall = [&closing] {
        closing->raiseEvent(text("e"), text("1"));
        closing.reset();
    };
    EXPECT_EQ(closing->fromJSAsynCall(text("t"), text("call")),
              (QStringList{text("t"), text("e"), text("e"), text("1")}));
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
    EXPECT_EQ(messages[1][1].toString() + messages[2][1].toString() + messages[3][1].toString(), text("REF"));
    EXPECT_EQ(messages[1][3].toString(), text("https://docs.skyleaf.test/once/1"));

    canPublish = false;
    port.resolveCall(id, large);
    EXPECT_EQ(messages.last(), (QVariantList{document.token, text("r"), id, QString::fromUtf8(large)}));
}

TEST_F(ScriptPortTest, RefusesCallsWithoutAScriptObject)
{
    const Document document = shownDocument();
    port.setScriptObject(nullptr);
    EXPECT_EQ(port.fromJSAsynCall(document.token, text("call")),
              (QStringList{document.token, text("x"), QString(), text("no script object")}));
    port.emitHost(document.token, text("webFileReady"), text("{}"));
}
