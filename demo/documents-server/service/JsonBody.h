#pragma once

#include <QJsonDocument>
#include <QJsonObject>

#include "store/Result.h"

namespace documents {

/** A request's body as JSON; Invalid when it is none, or not an object. */
Result<QJsonDocument> parseBody(const QByteArray& body);
Result<QJsonObject> parseObject(const QByteArray& body);

} // namespace documents
