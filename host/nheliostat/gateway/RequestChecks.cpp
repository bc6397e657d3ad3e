#include "gateway/RequestChecks.h"

#include "gateway/RequestHead.h"

#include <boost/beast/http/error.hpp>

namespace gateway {

Refusal refusalOfMalformedHead(const boost::system::error_code& error)
{
    if (error == boost::beast::http::error::header_limit)
        return {431, "the request's head is longer than 64 KiB", {}, true};
    return {400, "this is not an HTTP request: " + error.message(), {}, true};
}

std::optional<Refusal> refusalOf(const RequestHead& head, const RequestParser& parser, bool allowed)
{
    // Where a message with an unknown coding ends is anybody's guess.
    if (head.namesTransferCoding && !parser.chunked())
        return Refusal{400, "unknown transfer coding", {}, true};
    if (!allowed) {
        return Refusal{407, "proxy credentials are missing or wrong",
                       "Proxy-Authenticate: Basic realm=\"gateway\"\r\n", false};
    }
    return std::nullopt;
}

std::optional<RequestTarget> targetOf(const RequestHead& head, const std::optional<Origin>& inner)
{
    return inner && head.target.substr(0, 1) == "/" ? targetOfOriginForm(*inner, head.target)
                                                    : targetOfAbsoluteForm(head.target);
}

} // namespace gateway
