#pragma once

#include "vltcloudsvr/common/Calls.h"

#include <functional>

namespace vlt::cloudsvr {

/** Functions by name. Filled before the service answers calls; called from any thread. */
class FunctionRegistry
{
public:
    using Function = std::function<CallResult(const Caller&, const Values& arguments)>;

    void add(const QString& name, Function function) { m_functions.insert(name, std::move(function)); }
    /** Code UnsupportedFunction for a name that nobody added. A failure is logged. */
    CallResult call(const QString& name, const Caller& caller, const Values& arguments) const;

private:
    QMap<QString, Function> m_functions;
};

} // namespace vlt::cloudsvr
