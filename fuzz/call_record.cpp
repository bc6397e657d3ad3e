#include "check.h"

#include "tava/TavaIpc_types.h"
#include "vltcloudsvr/common/Transport.h"

// A record that is read comes back when it is written and read again; anything else raises Thrift's
// exception. The protocol has the limits of the local socket.

using namespace apache::thrift;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto in =
        std::make_shared<transport::TMemoryBuffer>(const_cast<std::uint8_t*>(data), std::uint32_t(size));
    vlt::tava::TavaIpcArg read;
    try {
        read.read(vlt::cloudsvr::protocolFactory()->getProtocol(in).get());
    } catch (const TException&) {
        return 0;
    }
    const auto memory =
        vlt::cloudsvr::protocolFactory()->getProtocol(std::make_shared<transport::TMemoryBuffer>());
    read.write(memory.get());
    vlt::tava::TavaIpcArg again;
    again.read(memory.get());
    check(again == read);
    return 0;
}
