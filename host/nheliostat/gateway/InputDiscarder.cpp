#include "gateway/InputDiscarder.h"

#include "gateway/ClientLink.h"

#include <boost/beast/http/error.hpp>

namespace gateway {
namespace {

constexpr std::size_t pieceSize = 64 * 1024;
constexpr std::size_t mostDropped = 4 * 1024 * 1024;

} // namespace

InputDiscarder::Result InputDiscarder::discardBody(ClientLink& link)
{
    link.parser->collectBody(nullptr);
    while (!link.parser->is_done()) {
        boost::system::error_code error;
        const std::size_t consumed =
            link.input.size() > 0 ? parseBody(*link.parser, link.input.data(), error) : 0;
        link.input.consume(consumed);
        m_dropped += consumed;
        const bool overlong = consumed == 0 && link.input.size() > GatewayLimits::chunkHeadBytes;
        if ((error && error != boost::beast::http::error::need_more) || overlong || m_dropped > mostDropped)
            return Result::TooMuch;
        if (consumed > 0)
            continue;
        const IoResult result = readInto(link.input, *link.transport, pieceSize);
        if (result.blocked()) {
            link.transport->want(result);
            return Result::Blocked;
        }
        if (!result.done())
            return Result::Ended;
    }
    return Result::Done;
}

InputDiscarder::Result InputDiscarder::discardAll(ClientLink& link)
{
    for (;;) {
        link.input.consume(link.input.size());
        if (m_dropped > mostDropped)
            return Result::TooMuch;
        const IoResult result = readInto(link.input, *link.transport, pieceSize);
        m_dropped += result.bytes;
        if (result.blocked()) {
            link.transport->want(result);
            return Result::Blocked;
        }
        if (!result.done())
            return Result::Ended;
    }
}

} // namespace gateway
