#include "service/JsonBody.h"

namespace documents {

Result<QJsonDocument> parseBody(const QByteArray& body)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(body, &parseError);
    if (parseError.error == QJsonParseError::NoError)
        return document;
    return Error{ErrorCode::Invalid,
                 QStringLiteral("The body is not JSON: %1.").arg(parseError.errorString())};
}

Result<QJsonObject> parseObject(const QByteArray& body)
{
    const auto document = parseBody(body);
    if (!document)
        return document.error();
    if (!document->isObject())
        return Error{ErrorCode::Invalid, QStringLiteral("The body is not a JSON object.")};
    return document->object();
}

} // namespace documents
