#pragma once

#include "vltcloudsvr/functions/FunctionRegistry.h"
#include "vltcloudsvr/server/EventLog.h"

#include "CloudService.h"

#include <functional>
#include <utility>

namespace vlt::cloudsvr {

/** What clients can ask for, over the registries. Called on a thread of each connection. */
class CallHandler final : public rpc::CloudServiceIf
{
public:
    using OnCaller = std::function<void(const Caller&)>;

    /** The arguments outlive it. `methods` are those of "tavaIpcCall"; `onCaller` is told of every call. */
    CallHandler(const FunctionRegistry& functions, const FunctionRegistry& methods, EventLog& events,
                OnCaller onCaller)
        : m_functions(functions)
        , m_methods(methods)
        , m_events(events)
        , m_onCaller(std::move(onCaller))
    {
    }

    void ping() override {}
    void call(rpc::CallResult& result, const rpc::Caller& caller, const std::string& functionName,
              const std::map<std::string, std::string>& arguments) override;
    void tavaIpcCall(rpc::CallResult& result, const rpc::Caller& caller,
                     const tava::TavaIpcArg& argument) override;
    void nextEvents(std::vector<rpc::ServiceEvent>& events, std::int64_t sinceId,
                    std::int32_t waitMs) override;

private:
    const FunctionRegistry& m_functions;
    const FunctionRegistry& m_methods;
    EventLog& m_events;
    const OnCaller m_onCaller;
};

} // namespace vlt::cloudsvr
