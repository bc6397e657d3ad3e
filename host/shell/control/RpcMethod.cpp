#include "shell/control/RpcMethod.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace shell::rpc {

namespace {

bool isInteger(const QJsonValue& value)
{
    const double number = value.toDouble(std::numeric_limits<double>::infinity());
    return number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max() &&
           std::floor(number) == number;
}

bool isTextList(const QJsonValue& value)
{
    const QJsonArray array = value.toArray();
    return value.isArray() &&
           std::all_of(array.begin(), array.end(), [](const QJsonValue& each) { return each.isString(); });
}

bool fits(Parameter::Type type, const QJsonValue& value)
{
    switch (type) {
    case Parameter::Type::Text:
        return value.isString();
    case Parameter::Type::Integer:
        return isInteger(value);
    case Parameter::Type::Boolean:
        return value.isBool();
    case Parameter::Type::Object:
        return value.isObject();
    case Parameter::Type::Array:
        return value.isArray();
    case Parameter::Type::TextList:
        return isTextList(value);
    case Parameter::Type::Any:
        break;
    }
    return true;
}

QString wanted(Parameter::Type type)
{
    switch (type) {
    case Parameter::Type::Text:
        return QStringLiteral("a text");
    case Parameter::Type::Integer:
        return QStringLiteral("an integer");
    case Parameter::Type::Boolean:
        return QStringLiteral("true or false");
    case Parameter::Type::Object:
        return QStringLiteral("an object");
    case Parameter::Type::Array:
        return QStringLiteral("an array");
    case Parameter::Type::TextList:
        return QStringLiteral("an array of texts");
    case Parameter::Type::Any:
        break;
    }
    return QStringLiteral("any value");
}

} // namespace

Method immediateMethod(const QString& name, const QVector<Parameter>& parameters,
                       std::function<Outcome(const QJsonObject&)> run)
{
    return {name, parameters,
            [run = std::move(run)](const QJsonObject& params, const Reply& reply) { reply(run(params)); }};
}

QString checkParameters(const QVector<Parameter>& parameters, const QJsonValue& params)
{
    if (params.isArray())
        return QStringLiteral("parameters are given by name, in an object");
    const QJsonObject object = params.toObject();
    int known = 0;
    for (const Parameter& parameter : parameters) {
        const auto member = object.constFind(parameter.name);
        if (member == object.constEnd()) {
            if (parameter.required)
                return QStringLiteral("missing parameter \"%1\"").arg(parameter.name);
            continue;
        }
        ++known;
        if (!fits(parameter.type, member.value()))
            return QStringLiteral("parameter \"%1\" must be %2").arg(parameter.name, wanted(parameter.type));
    }
    for (auto member = object.constBegin(); known < object.size() && member != object.constEnd(); ++member) {
        const bool isKnown = std::any_of(parameters.begin(), parameters.end(),
                                         [&](const Parameter& each) { return each.name == member.key(); });
        if (!isKnown)
            return QStringLiteral("unknown parameter \"%1\"").arg(member.key());
    }
    return {};
}

} // namespace shell::rpc
