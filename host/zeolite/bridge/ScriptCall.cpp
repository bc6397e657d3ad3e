#include "zeolite/bridge/ScriptCall.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

ScriptCall malformed(const QString& reason, const QString& id = {})
{
    return {id, {}, {}, reason};
}

QString nonEmptyText(const QJsonValue& value)
{
    return value.isString() ? value.toString() : QString();
}

ScriptCall parseUtf8(const QByteArray& bytes)
{
    if (bytes.contains('\0'))
        return malformed(QStringLiteral("the text holds a NUL"));
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return malformed(parseError.errorString());
    if (!document.isObject())
        return malformed(QStringLiteral("not an object"));

    const QJsonObject call = document.object();
    const QString id = nonEmptyText(call.value(QLatin1String("id")));
    if (id.isEmpty())
        return malformed(QStringLiteral("\"id\" is no text or empty"));
    const QString name = nonEmptyText(call.value(QLatin1String("name")));
    if (name.isEmpty())
        return malformed(QStringLiteral("\"name\" is no text or empty"), id);
    const QJsonValue arguments = call.value(QLatin1String("args"));
    if (!arguments.isObject() && !arguments.isUndefined())
        return malformed(QStringLiteral("\"args\" is no object"), id);
    return {id, name, arguments.toObject().toVariantMap(), {}};
}

} // namespace

ScriptCall parseScriptCall(const QString& text)
{
    if (text.size() > ScriptCall::longestText)
        return malformed(QStringLiteral("the text is too long"));
    return parseUtf8(text.toUtf8());
}

ScriptCall parseScriptCallBase64(const QString& text)
{
    if (text.size() / 4 * 3 > ScriptCall::longestText)
        return malformed(QStringLiteral("the text is too long"));
    const auto decoded = QByteArray::fromBase64Encoding(
        text.toLatin1(), QByteArray::Base64Encoding | QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        return malformed(QStringLiteral("not Base64"));
    return parseUtf8(*decoded);
}
