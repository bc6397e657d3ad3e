#include "shell/control/RpcDispatcher.h"

#include <gmock/gmock.h>

#include <QJsonArray>
#include <QJsonDocument>

#include <memory>
#include <vector>

namespace {

using namespace shell::rpc;
using Type = Parameter::Type;
using testing::HasSubstr;

QJsonObject toObject(const QByteArray& line)
{
    EXPECT_EQ(line.count('\n'), 1) << line.toStdString();
    EXPECT_TRUE(line.endsWith('\n'));
    const QJsonObject message = QJsonDocument::fromJson(line).object();
    EXPECT_EQ(message.value(QLatin1String("jsonrpc")).toString(), QStringLiteral("2.0"));
    return message;
}

/** A dispatcher with a few methods, and what it sent. */
class DispatcherTest : public testing::Test
{
protected:
    DispatcherTest()
    {
        m_dispatcher.add({immediateMethod(QStringLiteral("echo"),
                                          {{QStringLiteral("text"), Type::Text},
                                           {QStringLiteral("count"), Type::Integer, false}},
                                          [](const QJsonObject& params) { return QJsonValue(params); }),
                          {QStringLiteral("later"), {}, [this](const QJsonObject&, const Reply& reply) {
                               m_waiting.push_back(reply);
                           }}});
    }

    QJsonObject call(const QByteArray& line)
    {
        const size_t before = m_sent.size();
        m_dispatcher.handleLine(line);
        return m_sent.size() == before ? QJsonObject() : toObject(m_sent.back());
    }

    std::vector<QByteArray> m_sent;
    std::vector<Reply> m_waiting;
    Dispatcher m_dispatcher{[this](const QByteArray& line) { m_sent.push_back(line); }};
};

struct Mistake
{
    const char* line;
    int code;
    const char* id; //!< as JSON
    const char* named;
};

class BadLines : public DispatcherTest, public testing::WithParamInterface<Mistake>
{
};

TEST_P(BadLines, AreAnsweredWithTheirError)
{
    const QJsonObject message = call(GetParam().line);
    ASSERT_EQ(m_sent.size(), 1U);
    EXPECT_FALSE(message.contains(QLatin1String("result")));
    const QJsonObject error = message.value(QLatin1String("error")).toObject();
    EXPECT_EQ(error.value(QLatin1String("code")).toInt(), GetParam().code);
    EXPECT_THAT(error.value(QLatin1String("message")).toString().toStdString(), HasSubstr(GetParam().named));
    const QJsonArray id = QJsonDocument::fromJson(QByteArray("[") + GetParam().id + ']').array();
    EXPECT_EQ(message.value(QLatin1String("id")), id.at(0));
    EXPECT_TRUE(message.contains(QLatin1String("id")));
}

INSTANTIATE_TEST_SUITE_P(
    Table, BadLines,
    testing::Values(
        Mistake{"{", ParseError, "null", "no JSON"}, Mistake{"nonsense", ParseError, "null", "no JSON"},
        Mistake{"1],[2", ParseError, "null", "no JSON"}, Mistake{"1,2", ParseError, "null", "no JSON"},
        Mistake{"{\"jsonrpc\":\"2.0\",\"method\":\"\xff\"}", ParseError, "null", "no JSON"},
        Mistake{"17", InvalidRequest, "null", "object"}, Mistake{"[]", InvalidRequest, "null", "batch"},
        Mistake{R"([{"jsonrpc":"2.0","id":1,"method":"echo"}])", InvalidRequest, "null", "batch"},
        Mistake{R"({"id":1,"method":"echo"})", InvalidRequest, "1", "jsonrpc"},
        Mistake{R"({"jsonrpc":"1.0","id":1,"method":"echo"})", InvalidRequest, "1", "jsonrpc"},
        Mistake{R"({"jsonrpc":"2.0","id":"a"})", InvalidRequest, "\"a\"", "method"},
        Mistake{R"({"jsonrpc":"2.0","id":{},"method":"echo"})", InvalidRequest, "null", "id"},
        Mistake{R"({"jsonrpc":"2.0","id":1,"method":"echo","params":5})", InvalidRequest, "1", "params"},
        Mistake{R"({"jsonrpc":"2.0","id":1,"method":"Echo"})", MethodNotFound, "1", "\"Echo\""},
        Mistake{R"({"jsonrpc":"2.0","id":1,"method":"echo"})", InvalidParams, "1",
                "missing parameter \"text\""},
        Mistake{R"({"jsonrpc":"2.0","id":1,"method":"echo","params":["x"]})", InvalidParams, "1", "by name"},
        Mistake{R"({"jsonrpc":"2.0","id":1,"method":"echo","params":{"text":1}})", InvalidParams, "1",
                "\"text\" must be a text"},
        Mistake{R"({"jsonrpc":"2.0","id":1,"method":"echo","params":{"text":"","n":1}})", InvalidParams, "1",
                "unknown parameter \"n\""},
        Mistake{R"({"jsonrpc":"2.0","id":1,"method":"echo","params":{"text":"","count":1.5}})", InvalidParams,
                "1", "\"count\" must be an integer"},
        Mistake{R"({"jsonrpc":"2.0","id":1,"method":"echo","params":{"text":"","count":3e9}})", InvalidParams,
                "1", "\"count\" must be an integer"},
        Mistake{R"({"jsonrpc":"2.0","id":1,"method":"later","params":{"x":1}})", InvalidParams, "1",
                "\"x\""}));

TEST_F(DispatcherTest, TextsPassUnchanged)
{
    const QJsonObject message =
        call(R"({"jsonrpc":"2.0","id":"i","method":"echo","params":{"text":"a\u0000b\né","count":2}})");
    const QJsonObject result = message.value(QLatin1String("result")).toObject();
    const QString expected = QStringLiteral("a") + QChar(0) + QStringLiteral("b\n\u00e9");
    EXPECT_EQ(result.value(QLatin1String("text")).toString(), expected);
    EXPECT_EQ(result.value(QLatin1String("count")).toInt(), 2);
    EXPECT_EQ(message.value(QLatin1String("id")).toString(), QStringLiteral("i"));
}

TEST_F(DispatcherTest, ARequestWithoutIdGetsNoResponse)
{
    m_dispatcher.handleLine(R"({"jsonrpc":"2.0","method":"echo","params":{"text":""}})");
    m_dispatcher.handleLine(R"({"jsonrpc":"2.0","method":"nothing"})");
    EXPECT_TRUE(m_sent.empty());
    call(R"({"jsonrpc":"2.0","id":null,"method":"echo","params":{"text":""}})");
    EXPECT_EQ(m_sent.size(), 1U) << "an id of null is an id";
}

TEST_F(DispatcherTest, EveryCallEndsOnce)
{
    m_dispatcher.handleLine(R"({"jsonrpc":"2.0","id":1,"method":"later"})");
    m_dispatcher.handleLine(R"({"jsonrpc":"2.0","id":2,"method":"later"})");
    EXPECT_TRUE(m_sent.empty());
    m_waiting.at(1)(QJsonValue(5));
    m_waiting.at(1)(QJsonValue(6));
    ASSERT_EQ(m_sent.size(), 1U);
    EXPECT_EQ(toObject(m_sent.front()).value(QLatin1String("result")).toInt(), 5);
    m_waiting.clear(); // the first is dropped without an answer
    ASSERT_EQ(m_sent.size(), 2U);
    const QJsonObject dropped = toObject(m_sent.back());
    EXPECT_EQ(dropped.value(QLatin1String("id")).toInt(), 1);
    EXPECT_EQ(dropped.value(QLatin1String("error")).toObject().value(QLatin1String("code")).toInt(),
              OperationFailed);
}

TEST(RpcMessage, AnUndefinedResultIsNull)
{
    const QJsonObject message = toObject(responseLine(7, QJsonValue(QJsonValue::Undefined)));
    EXPECT_TRUE(message.contains(QLatin1String("result")));
    EXPECT_TRUE(message.value(QLatin1String("result")).isNull());
}

} // namespace
