// The script object in real documents: who gets it, what a call can carry, when calls are forgotten.
#include "BrowserFixture.h"

#include "nheliostat/browser/ScriptPort.h"
#include "zeolite/INxScriptTransport.h"

#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>

namespace {

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

} // namespace

TEST_F(BrowserTest, OffersTheScriptObjectToMainFramesOfItsOriginsOnly)
{
    site.put(docs("/"),
             "<script>window.seen = typeof helio + typeof QWebChannel + typeof qt.webChannelTransport.send"
             "</script><iframe src=/inner></iframe>");
    site.put(docs("/inner"), "<script>parent.inner = typeof helio + typeof qt</script>");
    ASSERT_TRUE(load(docs("/")));
    EXPECT_EQ(evaluate(text("return seen")).toString(), text("objectundefinedundefined"));
    EXPECT_EQ(evaluate(text("return inner")).toString(), text("undefinedundefined"));
    EXPECT_EQ(evaluate(text("helio.call = 1; window.helio = 2; return typeof helio.call")).toString(),
              text("function"));
    EXPECT_EQ(evaluate(text("return (await helio.call('measure', {text: 'abc'})).length")).toInt(), 3);

    ASSERT_TRUE(load(text("http://other.test/")));
    EXPECT_EQ(evaluate(text("return typeof helio + typeof qt.webChannelTransport.send")).toString(),
              text("undefinedundefined"));

    // The way back is a navigation to the origin like any other.
    ASSERT_TRUE(load(docs("/")));
    EXPECT_EQ(evaluate(text("return (await helio.call('measure', {text: 'ab'})).length")).toInt(), 2);
}

TEST_F(BrowserTest, KeepsTheScriptObjectInTheWindowThatTheBrowserStandsIn)
{
    ASSERT_TRUE(load(docs("/")));
    const auto isIn = [this](const QWidget& widget) {
        const QObject* holder = api;
        while (holder && holder != &widget)
            holder = holder->parent();
        return holder == &widget;
    };
    EXPECT_TRUE(isIn(window));
    QWidget other;
    browser->setParent(&other);
    browser->show();
    other.show();
    EXPECT_TRUE(isIn(other));
    EXPECT_EQ(evaluate(text("return (await helio.call('measure', {text: 'abc'})).length")).toInt(), 3);
    browser->setParent(&window);
}

TEST_F(BrowserTest, SettlesCallsOfEverySize)
{
    ASSERT_TRUE(load(docs("/")));
    EXPECT_EQ(evaluate(text("return (await helio.call('produce', {size: 3})).text")).toString(), text("xxx"));
    EXPECT_EQ(evaluate(text("return (await helio.call('produce', {size: 3000000})).text.length")).toInt(),
              3000000);
    const QJsonValue length =
        evaluate(text("return (await helio.call('measure', {text: 'ä'.repeat(7 << 20)})).length"));
    EXPECT_EQ(length.toInt(), 7 << 20) << qPrintable(length.toString());
    EXPECT_TRUE(
        evaluate(text("return await helio.call('nothing')")).toString().contains(text("unknown method")));
    EXPECT_TRUE(
        evaluate(text("return await helio.call('measure', 7)")).toString().contains(text("malformed call")));
    EXPECT_TRUE(evaluate(text("const a = {}; a.a = a; return await helio.call('measure', a)"))
                    .toString()
                    .contains(text("circular")));
}

TEST_F(BrowserTest, SettlesLateCallsUnlessTheirDocumentIsGone)
{
    ASSERT_TRUE(load(docs("/")));
    evaluate(text(
        "window.late = []; for (let i = 0; i < 2; ++i) helio.call('later').then((r) => late.push(r.n))"));
    ASSERT_TRUE(waitFor([this] { return api->waiting.size() == 2; }));
    for (int i = 1; i >= 0; --i) {
        api->waiting[i].reply()["n"] = i;
        api->publishResult(api->waiting[i]);
    }
    EXPECT_EQ(
        evaluate(text("while (late.length < 2) await 0, await new Promise(setTimeout); return late.join()"))
            .toString(),
        text("1,0"));

    evaluate(text("helio.call('later')"));
    ASSERT_TRUE(waitFor([this] { return api->waiting.size() == 3; }));
    ASSERT_TRUE(load(docs("/")));
    evaluate(text("window.late = []; helio.call('later').then((r) => late.push(r.n))"));
    ASSERT_TRUE(waitFor([this] { return api->waiting.size() == 4; }));
    for (int i = 2; i <= 3; ++i) {
        api->waiting[i].reply()["n"] = i;
        api->publishResult(api->waiting[i]);
    }
    EXPECT_EQ(
        evaluate(text("while (!late.length) await new Promise(setTimeout); return late.join()")).toString(),
        text("3"));
}

TEST_F(BrowserTest, DeliversToTheDocumentThatIsAddressedOnly)
{
    auto& port =
        dynamic_cast<nheliostat::browser::ScriptPort&>(browser->webViewContainer()->scriptTransport());
    const QSignalSpy ends(api.data(), &NxWebViewAsynJSObject::documentEnded);
    ASSERT_TRUE(load(docs("/")));
    const QString listen = text("window.got = []; window.f = (t) => got.push(t); helio.on('f', f);");
    const QString finish =
        text("while (!got.includes('end')) await new Promise(setTimeout); return got.join()");
    // What was sent to another document and comes in this one.
    evaluate(listen + text("history.pushState(1, '', '/inner'); history.replaceState(2, '', '/#part')"));
    for (const char* kind : {"f", "e"})
        Q_EMIT port.message(text("another's"), text(kind), text("f"), text("wrong"));
    port.callFunction(text("f"), text("end"));
    EXPECT_EQ(evaluate(finish).toString(), text("end"));
    EXPECT_TRUE(ends.isEmpty()) << "the document stays when its address changes";

    const quint64 first = api->document();
    evaluate(text("helio.call('later', {callback: 'f'}); return 1"));
    ASSERT_TRUE(waitFor([this] { return api->waiting.size() == 1; }));
    // The end of a load may be that of a new address.
    ASSERT_TRUE(load(docs("/")));
    ASSERT_TRUE(waitFor([&ends] { return ends.size() == 1; }));
    EXPECT_NE(api->document(), first);
    evaluate(listen);
    api->callbackToJS(api->waiting[0].getCallback(text("callback")), text("late"), false);
    api->callbackToJS(text("f"), text("end"), false);
    EXPECT_EQ(evaluate(finish).toString(), text("end"));

    ASSERT_TRUE(load(text("http://other.test/")));
    EXPECT_TRUE(waitFor([&ends] { return ends.size() == 2; }));
    EXPECT_EQ(api->document(), 0U);
}

TEST_F(BrowserTest, MayCloseInTheMiddleOfACall)
{
    ASSERT_TRUE(load(docs("/")));
    const QPointer<NxWebViewContainer> view = browser->webViewContainer();
    bool isClosed = false;
    api->action = [this, view, &isClosed] { // as when the user closes the tab beside a dialog
        browser->releaseWebView();
        isClosed = waitFor([&view] { return !view; });
    };
    view->executeScript(text("helio.call('act'); helio.call('act')"));
    EXPECT_TRUE(waitFor([&isClosed] { return isClosed; }));
}

TEST_F(BrowserTest, KeepsTheOrderOfEventsAndFunctionsWhateverTheirSize)
{
    ASSERT_TRUE(load(docs("/")));
    evaluate(text("window.got = []; helio.on('e', (t) => got.push('e' + t.length));"
                  "helio.on('e', () => { throw new Error('a listener fails'); });"
                  "window.f = (t) => got.push('f' + t.length);"));
    INxScriptTransport& transport = browser->webViewContainer()->scriptTransport();
    transport.raiseEvent(text("e"), text("1"));
    transport.raiseEvent(text("e"), QString(200000, QLatin1Char('x')));
    transport.callFunction(text("f"), text("22"));
    transport.callFunction(text("missing"), text("22"));
    transport.callFunction(text("f"), QString(100000, QLatin1Char('y')));
    transport.raiseEvent(text("e"), text("333"));
    EXPECT_EQ(
        evaluate(text("while (got.length < 5) await new Promise(setTimeout); return got.join()")).toString(),
        text("e1,e200000,f2,f100000,e3"));
}

TEST_F(BrowserTest, PassesReportsOfTheWebApplicationOn)
{
    qRegisterMetaType<QMap<QString, QString>>();
    ASSERT_TRUE(load(docs("/")));
    QSignalSpy ready(browser, &NHelioBrowserWidgetBase::webFileReady);
    QMetaObject::invokeMethod(browser, "onShowWebLoadingWidget", Q_ARG(QString, text("plan.docx")));
    auto* const cover = browser->findChild<QWidget*>(text("loadingCover"));
    EXPECT_TRUE(cover->isVisible());
    evaluate(
        text("helio.emitHost('nonsense', {}); helio.emitHost('webFileReady', {fileId: '7', fileType: 'w'})"));
    ASSERT_TRUE(ready.size() || ready.wait(patienceMs));
    const auto info = ready[0][0].value<QMap<QString, QString>>();
    EXPECT_EQ(info.value(text("fileId")), text("7"));
    EXPECT_FALSE(cover->isVisible());
}

TEST_F(BrowserTest, EndsEveryEvaluationOnce)
{
    EXPECT_TRUE(evaluate(text("return 1")).toString().contains(text("no document")));
    ASSERT_TRUE(load(text("http://other.test/")));
    const struct
    {
        const char* code;
        const char* outcome;
    } cases[] = {{"throw new Error('boom')", "error: Error: boom"},
                 {"await Promise.reject('no')", "error: no"},
                 {"return document", "object"},
                 {"const a = []; a.push(a); return a", "error: TypeError"},
                 {"return 1 +", "error: the code does not compile"},
                 {"await new Promise(() => {})", "error: the time is over"},
                 {"return 'a' // remark", "a"}};
    for (const auto& c : cases) {
        const QJsonValue outcome = evaluate(text(c.code), 1500);
        if (text(c.outcome) == text("object"))
            EXPECT_TRUE(outcome.isObject());
        else
            EXPECT_TRUE(outcome.toString().startsWith(text(c.outcome)))
                << c.code << qPrintable(outcome.toString());
    }
    EXPECT_TRUE(evaluate(text("")).isNull());
    EXPECT_TRUE(evaluate(text("location.href = 'https://docs.skyleaf.test/'; await new Promise(() => {})"))
                    .toString()
                    .contains(text("gone")));
}
