#include "vltcloudsvr/functions/FunctionRegistry.h"

#include "zeolite/NxLoggerLite.h"

namespace vlt::cloudsvr {

CallResult FunctionRegistry::call(const QString& name, const Caller& caller, const Values& arguments) const
{
    const auto function = m_functions.constFind(name);
    CallResult result;
    if (function == m_functions.constEnd())
        result = failure(ResultCode::UnsupportedFunction, QStringLiteral("there is no such function"));
    else
        result = (*function)(caller, arguments);
    if (result.code != ResultCode::Ok)
        NxLoggerLite::writeWarning(
            QStringLiteral("vltcloudsvr"),
            QStringLiteral("%1: code %2: %3")
                .arg(name, QString::number(int(result.code)), result.values.value(QStringLiteral("error"))));
    return result;
}

} // namespace vlt::cloudsvr
