#include "offline/NDOPWebviewPreloadHandler.h"

#include "handlers/HandlerFixture.h"
#include "offline/IPreloadedReplies.h"
#include "support/LogRecorder.h"

#include <QTest>
#include <QTimer>

namespace {

class FakePage final : public QObject, public IPreloadedReplies
{
public:
    std::optional<NPreloadedReply> preloadedReply(const QString& key) const override
    {
        return replies.contains(key) ? std::make_optional(replies.value(key)) : std::nullopt;
    }
    QJsonObject openFileRequestBody() const override { return {{QStringLiteral("v"), 1}}; }
    QList<QPair<QByteArray, QByteArray>> openFileResponseHeaders() const override { return {{"X-A", "ß"}}; }

    QMap<QString, NPreloadedReply> replies;
};

class PreloadedReplies : public HandlerFixture
{
protected:
    void SetUp() override
    {
        HandlerFixture::SetUp();
        handler = new NDOPWebviewPreloadHandler(object.get(), object.get(), &page);
        setHandler(handler);
    }

    QByteArray prefetch(const QByteArray& arguments) { return call("prefetch", json(arguments)); }
    void deliver(const char* key) { handler->notifyDOPPreloadData(QLatin1String(key), "one", 5, 6, {}); }

    FakePage page;
    NDOPWebviewPreloadHandler* handler = nullptr;
};

QByteArray answer(const QByteArray& callback, const QByteArray& error, const QByteArray& body,
                  const QByteArray& start, const QByteArray& end, const QByteArray& more = {})
{
    return callback + R"( {"callstatus":"ok","err":")" + error + R"(","result":{"body":")" + body +
           R"(","page":{"cur":0,"total":1},)" + (more.isEmpty() ? "" : R"("requestBody":{"v":1},)") +
           R"("requestTime":{"endTime":)" + end + R"(,"startTime":)" + start + "}" + more + "}}";
}

TEST_F(PreloadedReplies, WhatIsThereIsAnsweredAtOnce)
{
    page.replies = {{QStringLiteral("get_ssr_content"), {"one", 1700000000001, 1700000000002}},
                    {QStringLiteral("open_file"), {"two", 3, 4}}};
    EXPECT_EQ(prefetch(R"({"key":"get_ssr_content","dataCallbackName":"cb"})"), "");
    EXPECT_EQ(callbacks(), answer("cb", "", "b25l", "1700000000001", "1700000000002"));
    prefetch(R"({"key":"open_file","dataCallbackName":"cb"})");
    EXPECT_EQ(callbacks(), answer("cb", "", "dHdv", "3", "4", R"(,"responseHeaders":{"X-A":"ß"})"));
    deliver("open_file");
    EXPECT_EQ(callbacks(), "");
}

TEST_F(PreloadedReplies, ALateReplyAnswersTheLastAsker)
{
    LogRecorder log;
    prefetch(R"({"key":"k","dataCallbackName":"first"})");
    prefetch(R"({"key":"k","dataCallbackName":"second","timeout":1e12})");
    QList<int> intervals;
    for (const QTimer* timer : handler->findChildren<QTimer*>()) {
        if (timer->isActive())
            intervals << timer->interval();
    }
    EXPECT_EQ(intervals, QList<int>{std::numeric_limits<int>::max()});
    deliver("other");
    deliver("k");
    deliver("k");
    EXPECT_EQ(callbacks(), answer("second", "", "b25l", "5", "6"));
    EXPECT_EQ(log.lines().first(),
              QStringLiteral("info [skyleaf] key: k, request not response, start timeout timer "
                             "2000ms--NDOPWebviewPreloadHandler::prefetch"));
}

TEST_F(PreloadedReplies, AnAnswerEndsWithTheDocumentThatWaitsForIt)
{
    LogRecorder log;
    prefetch(R"({"key":"k","dataCallbackName":"cb"})");
    prefetch(R"({"key":"late","dataCallbackName":"cb","timeout":0})");
    container.deliverNextDocument(*object);
    EXPECT_EQ(log.lines().last(), QStringLiteral("info [skyleaf] key: k,late, the document that waits is "
                                                 "gone--NDOPWebviewPreloadHandler::forgetWaiting"));
    deliver("k");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(handler->findChildren<QTimer*>().isEmpty());
    EXPECT_EQ(callbacks(), "");
    prefetch(R"({"key":"k","dataCallbackName":"cb"})");
    deliver("k");
    EXPECT_EQ(callbacks(), answer("cb", "", "b25l", "5", "6"));
}

TEST_F(PreloadedReplies, ATimeOutAnswersEmpty)
{
    prefetch(R"({"key":"k","dataCallbackName":"cb","timeout":0})");
    QTRY_VERIFY(!container.transport.functionCalls.empty());
    EXPECT_EQ(callbacks(), answer("cb", "request timeout", "", "-1", "-1"));
    deliver("k");
    EXPECT_EQ(callbacks(), "");
}

TEST_F(PreloadedReplies, WrongCallsAreReplied)
{
    const QByteArray empty = R"({"callstatus":"error","err":"param isEmpty"})";
    EXPECT_EQ(prefetch(R"({"key":"k"})"), empty);
    EXPECT_EQ(prefetch(R"({"dataCallbackName":"cb"})"), empty);
    handler->setHost(nullptr);
    EXPECT_EQ(prefetch(R"({"key":"k","dataCallbackName":"cb"})"),
              R"({"callstatus":"error","err":"host widget null"})");
}

} // namespace
