#include "shell/control/RpcMessage.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace shell::rpc {

namespace {

/** Reads any JSON value: QJsonDocument itself reads objects and arrays only. */
QJsonValue readValue(const QByteArray& text, QJsonParseError& error)
{
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error == QJsonParseError::NoError)
        return document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());

    QJsonParseError wrappedError;
    const QJsonArray wrapped = QJsonDocument::fromJson('[' + text + ']', &wrappedError).array();
    if (wrappedError.error != QJsonParseError::NoError || wrapped.size() != 1)
        return QJsonValue(QJsonValue::Undefined);
    error = wrappedError;
    return wrapped.at(0);
}

bool isId(const QJsonValue& value)
{
    return value.isString() || value.isDouble() || value.isNull();
}

BadLine invalidRequest(const QJsonValue& id, const QString& message)
{
    return {isId(id) ? id : QJsonValue(), {InvalidRequest, message}};
}

QByteArray toLine(QJsonObject message)
{
    message.insert(QStringLiteral("jsonrpc"), QStringLiteral("2.0"));
    return QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace

std::variant<Request, BadLine> parseLine(const QByteArray& line)
{
    QJsonParseError error;
    const QJsonValue value = readValue(line, error);
    if (error.error != QJsonParseError::NoError) {
        return BadLine{{},
                       {ParseError,
                        QStringLiteral("no JSON: %1 at byte %2").arg(error.errorString()).arg(error.offset)}};
    }
    if (value.isArray())
        return invalidRequest({}, QStringLiteral("batches are not supported: send one request a line"));
    if (!value.isObject())
        return invalidRequest({}, QStringLiteral("a request must be an object"));

    const QJsonObject message = value.toObject();
    const QJsonValue id = message.value(QLatin1String("id"));
    if (message.value(QLatin1String("jsonrpc")) != QLatin1String("2.0"))
        return invalidRequest(id, QStringLiteral("\"jsonrpc\" must be \"2.0\""));
    if (!id.isUndefined() && !isId(id))
        return invalidRequest({}, QStringLiteral("\"id\" must be a text, a number or null"));
    const QJsonValue method = message.value(QLatin1String("method"));
    if (!method.isString())
        return invalidRequest(id, QStringLiteral("\"method\" must be a text"));
    const QJsonValue params = message.value(QLatin1String("params"));
    if (!params.isUndefined() && !params.isObject() && !params.isArray())
        return invalidRequest(id, QStringLiteral("\"params\" must be an object"));
    return Request{id, method.toString(), params};
}

QByteArray responseLine(const QJsonValue& id, const Outcome& outcome)
{
    QJsonObject message;
    message.insert(QStringLiteral("id"), id.isUndefined() ? QJsonValue() : id);
    if (const auto* failure = std::get_if<Failure>(&outcome)) {
        message.insert(QStringLiteral("error"), QJsonObject{{QStringLiteral("code"), failure->code},
                                                            {QStringLiteral("message"), failure->message}});
    } else {
        // A member of undefined value would be left out, and a response without result is none.
        const QJsonValue& result = std::get<QJsonValue>(outcome);
        message.insert(QStringLiteral("result"), result.isUndefined() ? QJsonValue() : result);
    }
    return toLine(message);
}

QByteArray notificationLine(const QString& method, const QJsonObject& params)
{
    return toLine({{QStringLiteral("method"), method}, {QStringLiteral("params"), params}});
}

} // namespace shell::rpc
