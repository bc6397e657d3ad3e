#pragma once

#include <string>
#include <string_view>

#include <boost/beast/http/field.hpp>

namespace gateway {

class RequestHead;
class ResponseHead;
struct RequestTarget;

/** How a body's end is marked on one side of the gateway. */
enum class BodyFraming { None, Length, Chunked, UntilClose };

constexpr char lowerAscii(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool equalsIgnoringCase(std::string_view left, std::string_view right);

/** True for a non-empty header name made of the characters that HTTP allows in one. */
bool isHeaderName(std::string_view name);

/** Header fields that concern one connection only, every "Proxy-" field included. */
bool isHopByHop(boost::beast::http::field id, std::string_view name);

/** `value` without line breaks and NUL characters, so that it can never start another header line. */
std::string singleLine(std::string_view value);

/** Appends one chunk of a chunked body; an empty piece appends nothing. */
void appendChunk(std::string& out, std::string_view piece);
constexpr std::string_view lastChunk = "0\r\n\r\n";

/**
 * The head to send upstream: origin form, Host from the target, without the view header and everything
 * hop-by-hop, the fields named by Connection included. `upgrade` keeps the request to switch protocols.
 */
std::string upstreamRequestHead(const RequestHead& head, const RequestTarget& target, BodyFraming framing,
                                bool upgrade);

/**
 * The head to send to the browser for an upstream response. `framing` is that towards the browser; `close`
 * says that the connection ends with this response; `upgrade` keeps the fields of a protocol switch.
 */
std::string clientResponseHead(const ResponseHead& head, BodyFraming framing, bool close, bool upgrade);

} // namespace gateway
