#pragma once

#include "shell/control/RpcMessage.h"

#include <QVector>

#include <functional>

namespace shell::rpc {

/** One parameter of a method, by name. */
struct Parameter
{
    enum class Type { Text, Integer, Boolean, Object, Array, TextList, Any };

    QString name;
    Type type = Type::Any;
    bool required = true;
};

/** Receives a call's outcome: exactly once, on the user-interface thread. */
using Reply = std::function<void(const Outcome&)>;

/** A method: its name, what it takes, and what it does with parameters that were checked against that. */
struct Method
{
    QString name;
    QVector<Parameter> parameters;
    std::function<void(const QJsonObject& params, const Reply& reply)> run;
};

/** A method that knows its outcome when it returns. */
Method immediateMethod(const QString& name, const QVector<Parameter>& parameters,
                       std::function<Outcome(const QJsonObject& params)> run);

/** Empty when `params` fits; else a text that names the parameter that is missing, unknown or of the wrong
 * type. */
QString checkParameters(const QVector<Parameter>& parameters, const QJsonValue& params);

} // namespace shell::rpc
