#include "vltcloudsvr/server/CallHandler.h"

#include "vltcloudsvr/common/Texts.h"

#include <algorithm>

namespace vlt::cloudsvr {
namespace {

constexpr int longestWaitMs = 60'000;

Caller readCaller(const rpc::Caller& caller)
{
    return {QString::fromStdString(caller.userId), QString::fromStdString(caller.localDataDir),
            QString::fromStdString(caller.apiUrl), toQt(caller.resolve),
            QString::fromStdString(caller.cookies)};
}

void write(rpc::CallResult& target, const CallResult& result)
{
    target.code = static_cast<std::int32_t>(result.code);
    target.values = toStd(result.values);
}

} // namespace

void CallHandler::call(rpc::CallResult& result, const rpc::Caller& caller, const std::string& functionName,
                       const std::map<std::string, std::string>& arguments)
{
    const Caller known = readCaller(caller);
    m_onCaller(known);
    write(result, m_functions.call(QString::fromStdString(functionName), known, toQt(arguments)));
}

void CallHandler::tavaIpcCall(rpc::CallResult& result, const rpc::Caller& caller,
                              const tava::TavaIpcArg& argument)
{
    // The only name space there is has no name.
    const std::string name =
        argument.nameSpace.empty() ? argument.method : argument.nameSpace + "." + argument.method;
    const Caller known = readCaller(caller);
    m_onCaller(known);
    write(result, m_methods.call(QString::fromStdString(name), known, toQt(argument.argMap)));
}

void CallHandler::nextEvents(std::vector<rpc::ServiceEvent>& events, std::int64_t sinceId,
                             std::int32_t waitMs)
{
    for (const Event& event : m_events.after(sinceId, std::clamp(waitMs, 0, longestWaitMs))) {
        rpc::ServiceEvent told;
        told.id = event.id;
        told.name = event.name.toStdString();
        told.values = toStd(event.values);
        events.push_back(std::move(told));
    }
}

} // namespace vlt::cloudsvr
