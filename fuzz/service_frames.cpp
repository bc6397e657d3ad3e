#include "check.h"

#include "vltcloudsvr/common/Transport.h"

#include "CloudService.h"

#include <thrift/TOutput.h>

// What a client of the cloud service sends on its connection: frame after frame is answered or refused, and
// what was read of a call is no more than was sent.

using namespace apache::thrift;
namespace rpc = vlt::cloudsvr::rpc;

namespace {

std::size_t sizeOf(const std::map<std::string, std::string>& values)
{
    std::size_t size = 0;
    for (const auto& [name, value] : values)
        size += name.size() + value.size();
    return size;
}

class Service final : public rpc::CloudServiceNull
{
public:
    explicit Service(std::size_t sent)
        : m_sent(sent)
    {
    }
    void call(rpc::CallResult& result, const rpc::Caller& caller, const std::string& name,
              const std::map<std::string, std::string>& arguments) override
    {
        check(name.size() + caller.userId.size() + caller.cookies.size() + sizeOf(caller.resolve) +
                  sizeOf(arguments) <=
              m_sent);
        result.values = arguments;
    }
    void tavaIpcCall(rpc::CallResult& result, const rpc::Caller&,
                     const vlt::tava::TavaIpcArg& argument) override
    {
        check(argument.method.size() + sizeOf(argument.argMap) <= m_sent);
        result.values = argument.argMap;
    }

private:
    const std::size_t m_sent;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    GlobalOutput.setOutputFunction([](const char*) {});
    const auto sent =
        std::make_shared<transport::TMemoryBuffer>(const_cast<std::uint8_t*>(data), std::uint32_t(size));
    const auto answered = std::make_shared<transport::TMemoryBuffer>();
    const auto in = vlt::cloudsvr::protocolFactory()->getProtocol(vlt::cloudsvr::framed(sent));
    const auto out = vlt::cloudsvr::protocolFactory()->getProtocol(vlt::cloudsvr::framed(answered));
    rpc::CloudServiceProcessor processor(std::make_shared<Service>(size));
    try {
        while (sent->available_read() > 0 && processor.process(in, out, nullptr)) {
        }
    } catch (const TException&) {
        return 0;
    }
    return 0;
}
