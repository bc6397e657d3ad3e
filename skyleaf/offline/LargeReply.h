#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/**
 * JSON texts around one large value, written straight into the text that goes to the page: a JSON document
 * would copy the value several times.
 */
namespace nlargereply {

/** `reply` with "result" = `result` with "body" = the Base64 text of the bytes. */
QString withBody(const QByteArray& bytes, const QJsonObject& result, const QJsonObject& reply);
/** {"callstatus": "ok", "result": {"data": text}}; bytes that are no UTF-8 become U+FFFD. */
QString withText(const QByteArray& utf8);

} // namespace nlargereply
