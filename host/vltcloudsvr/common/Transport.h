#pragma once

#include <thrift/TConfiguration.h>
#include <thrift/protocol/TBinaryProtocol.h>
#include <thrift/transport/TBufferTransports.h>

#include <limits>
#include <memory>

/** How both sides of the local socket write: frames of a bounded size, binary protocol. */
namespace vlt::cloudsvr {

constexpr int largestFrame = 16 * 1024 * 1024;

inline std::shared_ptr<apache::thrift::TConfiguration> transportLimits()
{
    // The library counts the bytes of a whole connection as one message; the frame is the limit that counts.
    return std::make_shared<apache::thrift::TConfiguration>(std::numeric_limits<int>::max(), largestFrame);
}

inline std::shared_ptr<apache::thrift::transport::TTransport>
framed(std::shared_ptr<apache::thrift::transport::TTransport> transport)
{
    return std::make_shared<apache::thrift::transport::TFramedTransport>(std::move(transport),
                                                                         transportLimits());
}

inline std::shared_ptr<apache::thrift::protocol::TProtocolFactory> protocolFactory()
{
    return std::make_shared<apache::thrift::protocol::TBinaryProtocolFactory>(largestFrame, largestFrame,
                                                                              true, true);
}

class FrameFactory final : public apache::thrift::transport::TTransportFactory
{
public:
    std::shared_ptr<apache::thrift::transport::TTransport>
    getTransport(std::shared_ptr<apache::thrift::transport::TTransport> transport) override
    {
        return framed(std::move(transport));
    }
};

} // namespace vlt::cloudsvr
