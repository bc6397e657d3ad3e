#include "zeolite/NxWebViewAsynJSObject.h"

#include <gmock/gmock.h>

#include <memory>
#include <vector>

#include <QCoreApplication>

#include "support/FakeWebViewContainer.h"
#include "zeolite/NxJSApiEventHandler.h"

namespace {

class StorageHandler : public NxWebViewJSApiHandler
{
    Q_OBJECT
public:
    using NxWebViewJSApiHandler::NxWebViewJSApiHandler;

public Q_SLOTS:
    void read(NxWebViewJSContext& context) { context.reply()["from"] = "storage"; }
};

class Bridge : public NxWebViewAsynJSObject
{
    Q_OBJECT
public:
    using NxWebViewAsynJSObject::NxWebViewAsynJSObject;

    void initHandlers() override
    {
        ++initialisations;
        storage = std::make_unique<StorageHandler>(nullptr, this);
        setHandler(QStringLiteral("docs.storage"), storage.get());
        NxWebViewAsynJSObject::initHandlers();
    }

    Q_INVOKABLE void invokable(NxWebViewJSContext& context) { context.reply()["called"] = true; }

    int initialisations = 0;
    std::unique_ptr<StorageHandler> storage;
    std::vector<NxWebViewJSContext> kept;

public Q_SLOTS:
    void version(NxWebViewJSContext& context)
    {
        context.reply()["callstatus"] = "ok";
        context.reply()["text"] =
            context.getValue(QStringLiteral("t"), QStringLiteral("–")).toString().toStdString();
    }
    void sizes(NxWebViewJSContext& context)
    {
        context.reply()["array"] = context.getArray(QStringLiteral("a")).size();
        context.reply()["map"] = context.getMap(QStringLiteral("m")).size();
        context.reply()["all"] = parseContextArgs(context, true).size();
    }
    void defaultReply(NxWebViewJSContext& context) { context.setDefaultPublishResult(true); }
    void silent(NxWebViewJSContext&) {}
    void ignored(NxWebViewJSContext& context)
    {
        context.reply()["callstatus"] = "ok";
        context.reply()["ignoreThisJsCallback"] = "true";
    }
    void deferred(NxWebViewJSContext& context) { kept.push_back(context); }
    void twice(NxWebViewJSContext& context)
    {
        context.reply()["n"] = 1;
        publishResult(context);
    }
    void faulty(NxWebViewJSContext& context)
    {
        context.reply()["text"] = "x";
        context.reply()["text"]["member"] = 1;
    }
    void suicide(NxWebViewJSContext& context)
    {
        context.reply()["n"] = 1;
        delete this;
    }
    void noScript(int) {}

protected Q_SLOTS:
    void hidden(NxWebViewJSContext& context) { context.reply()["called"] = true; }
};

class ScriptBridge : public testing::Test
{
protected:
    /** What the page gets for a call with the id "7": "= <json>", "! <error>" or nothing. */
    QString outcome(const QString& text, bool isBase64 = false)
    {
        page.transport = {};
        isBase64 ? bridge->fromJSAsynCallBase64(text) : bridge->fromJSAsynCall(text);
        return settled();
    }
    QString settled() const
    {
        QStringList ends;
        for (const auto& end : page.transport.resolved)
            ends.append(end.callId + QLatin1String(" = ") + QString::fromUtf8(end.json));
        for (const auto& end : page.transport.rejected)
            ends.append(end.name + QLatin1String(" ! ") + end.text);
        return ends.join(QLatin1Char('|'));
    }
    static QString call(const QString& name, const QString& arguments = QStringLiteral("{}"))
    {
        return QStringLiteral(R"({"id":"7","name":"%1","args":%2})").arg(name, arguments);
    }

    FakeWebViewContainer page;
    Bridge* bridge = new Bridge(&page, &page);
};

TEST_F(ScriptBridge, RoutesCallsAndEndsThem)
{
    const struct
    {
        const char* text;
        const char* outcome;
    } table[] = {
        {R"({"id":"7","name":"version"})", R"(7 = {"callstatus":"ok","text":"–"})"},
        {R"({"id":"7","name":"version","args":{"t":"ä\u0000\"\n"}})",
         R"(7 = {"callstatus":"ok","text":"ä\u0000\"\n"})"},
        {R"({"id":"7","name":"version","args":{"t":[1]}})", R"(7 = {"callstatus":"ok","text":""})"},
        {R"({"id":"7","name":"version","args":{"t":null}})", R"(7 = {"callstatus":"ok","text":"–"})"},
        {R"({"id":"7","name":"sizes","args":{"a":[1,2],"m":{"x":1},"z":null}})",
         R"(7 = {"all":2,"array":2,"map":1})"},
        {R"({"id":"7","name":"sizes","args":{"a":{"x":1},"m":"text"}})",
         R"(7 = {"all":2,"array":0,"map":0})"},
        {R"({"id":"7","name":"docs.storage.read"})", R"(7 = {"from":"storage"})"},
        {R"({"id":"7","name":"defaultReply"})", R"(7 = {"callstatus":"ok"})"},
        {R"({"id":"7","name":"twice"})", R"(7 = {"n":1})"},
        {R"({"id":"7","name":"silent"})", ""},
        {R"({"id":"7","name":"ignored"})", ""},
        {R"({"id":"7","name":"docs.print.read"})", "7 ! unknown handler: docs.print"},
        {R"({"id":"7","name":".version"})", "7 ! unknown handler: "},
        {R"({"id":"7","name":"docs.storage.write"})", "7 ! unknown method: docs.storage.write"},
        {R"({"id":"7","name":"docs.storage."})", "7 ! unknown method: docs.storage."},
        {R"({"id":"7","name":"read"})", "7 ! unknown method: read"},
        {R"({"id":"7","name":"invokable"})", "7 ! unknown method: invokable"},
        {R"({"id":"7","name":"hidden"})", "7 ! unknown method: hidden"},
        {R"({"id":"7","name":"noScript"})", "7 ! unknown method: noScript"},
        {R"({"id":"7","name":"deleteLater"})", "7 ! unknown method: deleteLater"},
        {R"x({"id":"7","name":"version(NxWebViewJSContext&)"})x",
         "7 ! unknown method: version(NxWebViewJSContext&)"},
        {R"({"id":"7","name":"version","args":[]})", "7 ! malformed call: \"args\" is no object"},
        {R"({"id":"7","name":"version","args":null})", "7 ! malformed call: \"args\" is no object"},
        {R"({"id":"7","args":{}})", "7 ! malformed call: \"name\" is no text or empty"},
        {R"({"id":7,"name":"version"})", " ! malformed call: \"id\" is no text or empty"},
        {R"({"name":"version"})", " ! malformed call: \"id\" is no text or empty"},
        {R"([])", " ! malformed call: not an object"},
    };
    for (const auto& row : table)
        EXPECT_EQ(outcome(QString::fromUtf8(row.text)), QString::fromUtf8(row.outcome)) << row.text;
    EXPECT_EQ(bridge->initialisations, 1);
    EXPECT_TRUE(outcome(call(QStringLiteral("faulty"))).startsWith(QLatin1String("7 ! call failed: ")));
}

TEST_F(ScriptBridge, RejectsTextsThatAreNoCall)
{
    const QString good = call(QStringLiteral("version"));
    const QString nested = QString(5000, QLatin1Char('[')) + QString(5000, QLatin1Char(']'));
    QString withNul = good;
    withNul.insert(10, QChar(0));
    for (const QString& text : {QString(), QStringLiteral("{"), good.chopped(1), withNul,
                                call(QStringLiteral("version"), QStringLiteral(R"({"t":%1})").arg(nested))})
        EXPECT_TRUE(outcome(text).startsWith(QLatin1String(" ! malformed call: ")))
            << qPrintable(text.left(80));

    // Long is not wrong.
    const QString longText = QStringLiteral(R"({"t":"%1"})").arg(QString(10'000'000, QLatin1Char('x')));
    EXPECT_FALSE(outcome(call(QStringLiteral("version"), longText)).contains(QLatin1Char('!')));
}

TEST_F(ScriptBridge, TakesBase64)
{
    const QByteArray good =
        call(QStringLiteral("version"), QStringLiteral(R"({"t":"ä"})")).toUtf8().toBase64();
    EXPECT_EQ(outcome(QString::fromLatin1(good), true),
              QStringLiteral(R"(7 = {"callstatus":"ok","text":"ä"})"));
    for (const QString& bad : {QStringLiteral("{}"), QStringLiteral("ééé="), QString::fromLatin1(good + '*')})
        EXPECT_EQ(outcome(bad, true), QStringLiteral(" ! malformed call: not Base64"));
    EXPECT_TRUE(outcome(QStringLiteral("/////w=="), true).startsWith(QLatin1String(" ! malformed call: ")));
}

TEST_F(ScriptBridge, EndsADeferredCallExactlyOnce)
{
    EXPECT_EQ(outcome(call(QStringLiteral("deferred"))), QString());
    NxWebViewJSContext later = bridge->kept.at(0);
    later.reply()["mode"] = 1;
    bridge->publishResult(later);
    bridge->publishResult(later);
    bridge->publishResult(bridge->kept.at(0)); // another copy of the same call
    EXPECT_EQ(settled(), QStringLiteral(R"(7 = {"mode":1})"));
    EXPECT_TRUE(page.transport.functionCalls.empty());

    bridge->fromJSAsynCall(call(QStringLiteral("deferred"))); // a later call that has the same id
    bridge->publishResult(later);
    EXPECT_EQ(page.transport.resolved.size(), 1U);
    bridge->publishResult(bridge->kept.at(1));
    EXPECT_EQ(page.transport.resolved.size(), 2U);
}

TEST_F(ScriptBridge, PublishesToANamedFunction)
{
    NxWebViewJSContext context(bridge->document());
    context.parse(QStringLiteral("fake_method"), QStringLiteral("onState"), {});
    context.reply()["status"] = "ä";
    bridge->publishResult(context);
    context.parse(QStringLiteral("fake_method"), QString(), {});
    bridge->publishResult(context);
    bridge->callbackToJS(QStringLiteral("onText"), QStringLiteral("data"), false);
    bridge->callbackToJS(QStringLiteral("onText"), QStringLiteral("w6Q="), true);
    bridge->callbackToJS(QString(), QStringLiteral("data"), false);

    QStringList calls;
    for (const auto& made : page.transport.functionCalls)
        calls.append(made.name + QLatin1Char(' ') + made.text);
    EXPECT_EQ(calls, QStringList({QStringLiteral(R"(onState {"status":"ä"})"), QStringLiteral("onText data"),
                                  QStringLiteral("onText ä")}));
    EXPECT_TRUE(settled().isEmpty());
}

TEST_F(ScriptBridge, AnswersNobodyButTheDocumentThatAsked)
{
    const QString named = call(QStringLiteral("deferred"), QStringLiteral(R"({"callback":"onText"})"));
    const auto showDocument = [this](quint64 document) {
        page.transport.shownDocument = document;
        bridge->endDocument();
    };
    const auto answerAll = [this] {
        for (NxWebViewJSContext& context : bridge->kept) {
            context.reply()["n"] = 1;
            bridge->callbackToJS(context.getCallback(QStringLiteral("callback")), QStringLiteral("{}"),
                                 false);
            NxWebViewJSContext fresh(context.document());
            fresh.parse(QStringLiteral("fake_method"), QStringLiteral("onState"), {});
            fresh.reply()["n"] = 1;
            bridge->publishResult(fresh);
            bridge->publishResult(context);
        }
    };
    // The second document has a call of the same id and functions of the same names.
    bridge->fromJSAsynCall(named);
    bridge->queueJSAsynCall(named, false);
    showDocument(2);
    bridge->fromJSAsynCall(named);
    QCoreApplication::processEvents();
    ASSERT_EQ(bridge->kept.size(), 2U) << "the queued call went with its document";
    answerAll();
    EXPECT_EQ(page.transport.resolved.size(), 1U);
    EXPECT_EQ(page.transport.functionCalls.size(), 2U);

    for (const quint64 document : {3, 0, 1}) {
        showDocument(document);
        bridge->fromJSAsynCall(named);
        showDocument(document + 10);
        page.transport.functionCalls.clear();
        answerAll();
        EXPECT_TRUE(page.transport.functionCalls.empty()) << document;
        EXPECT_EQ(page.transport.resolved.size(), 1U) << document;
    }
    bridge->publishResult(NxWebViewJSContext());
    bridge->callbackToJS(NxWebViewJSCallback{QStringLiteral("onText"), 0}, QStringLiteral("{}"), false);
    EXPECT_TRUE(page.transport.functionCalls.empty());
}

TEST_F(ScriptBridge, QueuesCallsAndRaisesEvents)
{
    bridge->queueJSAsynCall(call(QStringLiteral("version")), false);
    EXPECT_TRUE(settled().isEmpty());
    QCoreApplication::processEvents();
    EXPECT_EQ(page.transport.resolved.size(), 1U);

    bridge->eventHandler()->raiseEvent(QStringLiteral("ondragenter"), QStringLiteral("{}"));
    ASSERT_EQ(page.transport.events.size(), 1U);
    EXPECT_EQ(page.transport.events[0].name, QStringLiteral("ondragenter"));
}

TEST_F(ScriptBridge, OutlivesItsHandlersAndItsView)
{
    bridge->ensureHandlers();
    EXPECT_EQ(bridge->findHandler(QStringLiteral("docs.storage")).second, bridge->storage.get());
    StorageHandler replacement(nullptr, bridge);
    bridge->setHandler(QStringLiteral("docs.storage"), &replacement);
    bridge->storage.reset();
    EXPECT_EQ(bridge->findHandler(QStringLiteral("docs.storage")).second, &replacement);
    bridge->setHandler(QStringLiteral("docs.storage"), nullptr);
    EXPECT_EQ(outcome(call(QStringLiteral("docs.storage.read"))),
              QStringLiteral("7 ! unknown handler: docs.storage"));

    auto closing = std::make_unique<FakeWebViewContainer>();
    Bridge remaining(closing.get());
    closing.reset();
    EXPECT_EQ(remaining.eventHandler(), nullptr);
    remaining.fromJSAsynCall(call(QStringLiteral("version")));
    remaining.callbackToJS(QStringLiteral("onText"), QStringLiteral("data"), false);
    EXPECT_EQ(outcome(call(QStringLiteral("suicide"))), QString());
}

} // namespace

#include "ScriptBridgeTest.moc"
