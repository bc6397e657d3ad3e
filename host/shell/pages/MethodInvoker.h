#pragma once

#include "shell/control/RpcMessage.h"

#include <QJsonArray>

class QObject;

namespace shell {

/**
 * Calls an invokable method or slot of the object by name with arguments made from JSON: texts, booleans,
 * numbers, maps, lists. Answers its value as JSON, null for none. InvalidParams when the arguments fit no
 * method of the name, OperationFailed when there is no such method or its value has no JSON form.
 */
rpc::Outcome invokeByName(QObject& object, const QString& method, const QJsonArray& arguments);

} // namespace shell
