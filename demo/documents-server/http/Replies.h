#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include "http/HttpMessage.h"

namespace documents {

/** A compact JSON body that nobody may store. */
HttpReply jsonReply(int status, const QJsonObject& object);

/** True for targets that scripts ask for: their errors are JSON, everybody else's a readable page. */
bool isApiTarget(const QByteArray& target);

/**
 * What went wrong, in the form that fits the target: {"result": `result`, "msg": `message`} or a page that
 * says `message` under the status.
 */
HttpReply errorReply(const QByteArray& target, int status, const QString& result, const QString& message);

/** 405 with the methods that the target knows ("GET, HEAD"). */
HttpReply methodNotAllowed(const QByteArray& target, const QByteArray& allowed);

/** 404 for a target that leads nowhere. */
HttpReply notFound(const QByteArray& target, const QString& message);

} // namespace documents
