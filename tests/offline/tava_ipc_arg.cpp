#include "tava/TavaIpc_types.h"

#include <thrift/protocol/TBinaryProtocol.h>
#include <thrift/protocol/TProtocolException.h>
#include <thrift/transport/TBufferTransports.h>

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace apache::thrift;
using protocol::TProtocol;
using protocol::TProtocolException;
using vlt::tava::TavaIpcArg;

/** A protocol over memory: what is written is read back. */
std::shared_ptr<TProtocol> inMemory()
{
    return std::make_shared<protocol::TBinaryProtocol>(std::make_shared<transport::TMemoryBuffer>());
}

void writeText(TProtocol& out, std::int16_t id, const std::string& text)
{
    out.writeFieldBegin("", protocol::T_STRING, id);
    out.writeString(text);
}

void writePairs(TProtocol& out, const std::vector<std::string>& keysAndValues)
{
    out.writeFieldBegin("", protocol::T_MAP, 3);
    out.writeMapBegin(protocol::T_STRING, protocol::T_STRING, std::uint32_t(keysAndValues.size() / 2));
    for (const std::string& text : keysAndValues)
        out.writeString(text);
}

/** What the function raises; UNKNOWN for nothing. */
TProtocolException::TProtocolExceptionType raisedBy(const std::function<void()>& function)
{
    try {
        function();
    } catch (const TProtocolException& error) {
        return error.getType();
    }
    return TProtocolException::UNKNOWN;
}

TEST(TavaIpcArg, SkipsWhatItDoesNotKnowAndRefusesWhatIsNotWhole)
{
    const auto memory = inMemory();
    memory->writeFieldBegin("", protocol::T_I64, 9);
    memory->writeI64(7);
    writeText(*memory, 1, "n");
    writePairs(*memory, {"k", "1", "k", "2"});
    writeText(*memory, 2, "m");
    memory->writeFieldBegin("", protocol::T_I32, 2); // another type than the field's
    memory->writeI32(3);
    memory->writeFieldStop();
    TavaIpcArg record;
    record.read(memory.get());
    EXPECT_EQ(record.nameSpace + record.method + record.argMap.at("k"), "nm2") << "the last value is kept";

    for (const int missing : {1, 2, 3}) {
        for (const std::int16_t id : {1, 2}) {
            if (id != missing)
                writeText(*memory, id, "text");
        }
        if (missing != 3)
            writePairs(*memory, {});
        memory->writeFieldStop();
        EXPECT_EQ(raisedBy([&] { record.read(memory.get()); }), TProtocolException::INVALID_DATA) << missing;
    }
}

} // namespace
