#pragma once

#include "gateway/GatewayLimits.h"
#include "gateway/HeadScanner.h"
#include "gateway/RequestHead.h"
#include "gateway/RequestTarget.h"
#include "gateway/Transport.h"

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/error.hpp>

#include <memory>
#include <optional>

namespace gateway {

/** A browser connection and the request that is being read from it; shared with who forwards the request. */
struct ClientLink
{
    explicit ClientLink(std::shared_ptr<Transport> connection)
        : transport(std::move(connection))
    {
        startRequest();
    }

    /** Makes ready for the next request. Bytes that came in early stay. */
    void startRequest()
    {
        parser.emplace(head);
        scanner.restart();
    }

    /** Parses the head when `input` holds all of it; true then. Otherwise `error` is need_more or final. */
    bool parseHead(boost::system::error_code& error)
    {
        const std::size_t size =
            scanner.headSize({static_cast<const char*>(input.data().data()), input.size()});
        if (size == 0) {
            error = input.size() > GatewayLimits::requestHeadBytes ? boost::beast::http::error::header_limit
                                                                   : boost::beast::http::error::need_more;
            return false;
        }
        head.reset(size);
        input.consume(parser->put(input.data(), error));
        if (error == boost::beast::http::error::need_more) // after a whole head
            error = boost::beast::http::error::bad_field;
        return !error && parser->is_header_done();
    }

    std::shared_ptr<Transport> transport;
    boost::beast::flat_buffer input; //!< received, not yet parsed
    HeadScanner scanner;
    RequestHead head;
    std::optional<RequestParser> parser; //!< always set
    RequestTarget target;
};

/** Reads up to `size` bytes from `transport` to the end of `buffer`. */
inline IoResult readInto(boost::beast::flat_buffer& buffer, Transport& transport, std::size_t size)
{
    const auto space = buffer.prepare(size);
    const IoResult result = transport.read(static_cast<char*>(space.data()), size);
    buffer.commit(result.bytes);
    return result;
}

} // namespace gateway
