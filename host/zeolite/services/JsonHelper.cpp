#include "zeolite/JsonHelper.h"

#include <QJsonDocument>

namespace JsonHelper {

QString convertQJsonToString(const QJsonObject& object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QJsonObject convertStringToQJson(const QString& text)
{
    return convertByteArrayToQJson(text.toUtf8());
}

QJsonObject convertByteArrayToQJson(const QByteArray& bytes)
{
    return QJsonDocument::fromJson(bytes).object();
}

} // namespace JsonHelper
