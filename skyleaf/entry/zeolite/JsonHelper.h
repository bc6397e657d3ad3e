#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/** JSON texts and objects; text that is no JSON object gives an empty object. */
namespace JsonHelper {

/** Compact. */
QString convertQJsonToString(const QJsonObject& object);
QJsonObject convertStringToQJson(const QString& text);
QJsonObject convertByteArrayToQJson(const QByteArray& bytes);

} // namespace JsonHelper
