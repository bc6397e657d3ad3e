#pragma once

#include "vltcloudsvr/functions/FunctionRegistry.h"
#include "vltcloudsvr/server/EventLog.h"

#include "CloudService.h"

namespace vlt::cloudsvr {

/** What clients can ask for, over the registries. Called on a thread of each connection. */
class CallHandler final : public rpc::CloudServiceIf
{
public:
    /** The arguments outlive it. `methods` are those of "tavaIpcCall". */
    CallHandler(const FunctionRegistry& functions, const FunctionRegistry& methods, EventLog& events)
        : m_functions(functions)
        , m_methods(methods)
        , m_events(events)
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
};

} // namespace vlt::cloudsvr
