#include "shell/pages/MethodInvoker.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QMetaMethod>
#include <QUrl>
#include <QVariant>
#include <QVector>

#include <array>
#include <optional>

namespace shell {

namespace {

constexpr int maxArguments = 10; // as many as the meta-object system passes on

using TextMap = QMap<QString, QString>;

/** The argument as a value of the parameter's type; nothing when it does not fit. */
std::optional<QVariant> toParameter(const QJsonValue& argument, int type)
{
    switch (type) {
    case QMetaType::QVariant:
        return argument.toVariant();
    case QMetaType::QJsonValue:
        return QVariant::fromValue(argument);
    case QMetaType::QString:
        return argument.isString() ? std::optional<QVariant>(argument.toString()) : std::nullopt;
    case QMetaType::QUrl:
        return argument.isString() ? std::optional<QVariant>(QUrl(argument.toString())) : std::nullopt;
    case QMetaType::Bool:
        return argument.isBool() ? std::optional<QVariant>(argument.toBool()) : std::nullopt;
    case QMetaType::QVariantMap:
        return argument.isObject() ? std::optional<QVariant>(argument.toObject().toVariantMap())
                                   : std::nullopt;
    case QMetaType::QJsonObject:
        return argument.isObject() ? std::optional<QVariant>(argument.toObject()) : std::nullopt;
    case QMetaType::QVariantList:
        return argument.isArray() ? std::optional<QVariant>(argument.toArray().toVariantList())
                                  : std::nullopt;
    case QMetaType::QJsonArray:
        return argument.isArray() ? std::optional<QVariant>(argument.toArray()) : std::nullopt;
    default:
        break;
    }
    QVariant value = argument.toVariant();
    const bool isNumber = type == QMetaType::Int || type == QMetaType::UInt || type == QMetaType::LongLong ||
                          type == QMetaType::ULongLong || type == QMetaType::Double ||
                          type == QMetaType::Float;
    if (isNumber ? argument.isDouble() : type == QMetaType::QStringList && argument.isArray()) {
        if (value.convert(type))
            return value;
    }
    return std::nullopt;
}

/** The arguments as the method takes them; nothing when they do not fit. */
std::optional<QVector<QVariant>> toParameters(const QMetaMethod& method, const QJsonArray& arguments)
{
    if (method.parameterCount() != arguments.size() || arguments.size() > maxArguments)
        return std::nullopt;
    QVector<QVariant> values;
    for (int i = 0; i < arguments.size(); ++i) {
        const std::optional<QVariant> value = toParameter(arguments.at(i), method.parameterType(i));
        if (!value)
            return std::nullopt;
        values.append(*value);
    }
    return values;
}

QJsonValue toJson(const QVariant& value)
{
    if (value.userType() == qMetaTypeId<TextMap>()) {
        QJsonObject object;
        const auto map = value.value<TextMap>();
        for (auto entry = map.begin(); entry != map.end(); ++entry)
            object.insert(entry.key(), entry.value());
        return object;
    }
    return QJsonValue::fromVariant(value);
}

rpc::Failure failed(const QMetaMethod& method, const QString& why)
{
    return {rpc::OperationFailed,
            QStringLiteral("method %1 %2").arg(QString::fromLatin1(method.methodSignature()), why)};
}

rpc::Outcome invoke(QObject& object, const QMetaMethod& method, QVector<QVariant>& values)
{
    const bool isVariant = method.returnType() == QMetaType::QVariant;
    const bool hasValue = method.returnType() != QMetaType::Void;
    if (hasValue && method.returnType() == QMetaType::UnknownType)
        return failed(method, QStringLiteral("returns a value of unknown type"));

    // The meta-object system takes the addresses of values, and their types' names to check them against.
    QVariant value = hasValue && !isVariant ? QVariant(method.returnType(), nullptr) : QVariant();
    const QGenericReturnArgument result =
        hasValue
            ? QGenericReturnArgument(method.typeName(), isVariant ? static_cast<void*>(&value) : value.data())
            : QGenericReturnArgument();
    std::array<QGenericArgument, maxArguments> generic;
    for (int i = 0; i < values.size(); ++i) {
        const bool asVariant = method.parameterType(i) == QMetaType::QVariant;
        const void* data = asVariant ? static_cast<const void*>(&values[i]) : values[i].constData();
        generic[static_cast<size_t>(i)] =
            QGenericArgument(QMetaType::typeName(method.parameterType(i)), data);
    }
    if (!method.invoke(&object, Qt::DirectConnection, result, generic[0], generic[1], generic[2], generic[3],
                       generic[4], generic[5], generic[6], generic[7], generic[8], generic[9]))
        return failed(method, QStringLiteral("cannot be invoked"));
    return hasValue ? toJson(value) : QJsonValue();
}

} // namespace

rpc::Outcome invokeByName(QObject& object, const QString& method, const QJsonArray& arguments)
{
    const QMetaObject* meta = object.metaObject();
    const QByteArray name = method.toLatin1();
    bool isKnown = false;
    for (int i = meta->methodCount() - 1; i >= 0; --i) {
        const QMetaMethod candidate = meta->method(i);
        if (candidate.name() != name)
            continue;
        isKnown = true;
        if (std::optional<QVector<QVariant>> values = toParameters(candidate, arguments))
            return invoke(object, candidate, *values);
    }
    if (!isKnown)
        return rpc::Failure{rpc::OperationFailed, QStringLiteral("no method \"%1\"").arg(method)};
    return rpc::Failure{rpc::InvalidParams,
                        QStringLiteral("parameter \"args\" does not fit the method \"%1\"").arg(method)};
}

} // namespace shell
