#include "Invokables.h"

#include "shell/pages/MethodInvoker.h"

#include <gmock/gmock.h>

#include <QJsonDocument>
#include <QJsonObject>

namespace {

using shell::rpc::Failure;

QJsonArray array(const QByteArray& json)
{
    return QJsonDocument::fromJson(json).array();
}

shell::rpc::Outcome call(const char* method, const QByteArray& arguments)
{
    Invokables object;
    return shell::invokeByName(object, QString::fromLatin1(method), array(arguments));
}

struct Call
{
    const char* method;
    const char* arguments;
    const char* expected; //!< an array with the value
};

class Values : public testing::TestWithParam<Call>
{
};

TEST_P(Values, GoInAndComeBack)
{
    const auto outcome = call(GetParam().method, GetParam().arguments);
    ASSERT_TRUE(std::holds_alternative<QJsonValue>(outcome))
        << std::get<Failure>(outcome).message.toStdString();
    EXPECT_EQ(QJsonArray{std::get<QJsonValue>(outcome)}, array(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Table, Values,
    testing::Values(Call{"join", R"([["a","b"],"-"])", R"(["a-b"])"}, Call{"add", "[1,2]", "[3]"},
                    Call{"add", "[1]", "[101]"}, Call{"half", "[5]", "[2.5]"},
                    Call{"negate", "[true]", "[false]"},
                    Call{"swap", R"([{"x":[1]}])", R"([{"was":{"x":[1]}}])"},
                    Call{"same", R"([{"x":1}])", R"([{"x":1}])"}, Call{"same", "[null]", "[null]"},
                    Call{"info", "[]", R"([{"a":"b"}])"}, Call{"kind", R"(["x"])", R"(["text"])"},
                    Call{"kind", "[4]", R"(["number"])"}, Call{"remember", R"(["t"])", "[null]"}));

class Misfits : public testing::TestWithParam<Call>
{
};

TEST_P(Misfits, AreErrors)
{
    const auto outcome = call(GetParam().method, GetParam().arguments);
    ASSERT_TRUE(std::holds_alternative<Failure>(outcome));
    EXPECT_EQ(QByteArray::number(std::get<Failure>(outcome).code), QByteArray(GetParam().expected));
    EXPECT_THAT(std::get<Failure>(outcome).message.toStdString(), testing::HasSubstr(GetParam().method));
}

INSTANTIATE_TEST_SUITE_P(Table, Misfits,
                         testing::Values(Call{"nothing", "[]", "-32000"}, Call{"Join", "[]", "-32000"},
                                         Call{"join", R"(["a","b"])", "-32602"},
                                         Call{"add", R"(["1",2])", "-32602"},
                                         Call{"add", "[1,2,3]", "-32602"}, Call{"negate", "[1]", "-32602"},
                                         Call{"swap", "[[]]", "-32602"}, Call{"object", "[null]", "-32602"}));

TEST(MethodInvoker, PassesTextsAsTheyAre)
{
    Invokables object;
    const QString text = QStringLiteral("a") + QChar(0) + QString(1000000, QLatin1Char('x'));
    shell::invokeByName(object, QStringLiteral("remember"), {text});
    EXPECT_EQ(object.last, text);
}

} // namespace
