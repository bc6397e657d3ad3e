#include "shell/control/DialogMethods.h"

#include "shell/dialogs/DialogAnswers.h"

namespace shell {

rpc::Method dialogAnswerMethod(DialogAnswers& answers)
{
    using Type = rpc::Parameter::Type;
    return rpc::immediateMethod(QStringLiteral("dialog.answer"),
                                {{QStringLiteral("dialog"), Type::Text},
                                 {QStringLiteral("value"), Type::Any},
                                 {QStringLiteral("times"), Type::Integer, false}},
                                [&answers](const QJsonObject& params) -> rpc::Outcome {
                                    const QString error =
                                        answers.add(params.value(QLatin1String("dialog")).toString(),
                                                    params.value(QLatin1String("value")),
                                                    params.value(QLatin1String("times")).toInt(1));
                                    if (!error.isEmpty())
                                        return rpc::Failure{rpc::InvalidParams, error};
                                    return QJsonValue();
                                });
}

} // namespace shell
