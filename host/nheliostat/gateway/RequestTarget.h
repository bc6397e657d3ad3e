#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace gateway {

enum class Scheme { Http, Https };

std::uint16_t defaultPort(Scheme scheme);

struct HostPort
{
    std::string host; //!< lower case; an IPv6 address stands in brackets
    std::uint16_t port = 0;

    /** "host:port", the key of the resolve map and of pooled connections. */
    std::string text() const;
    /** The host as connect and certificate checks want it: without brackets. */
    std::string bareHost() const;
};

/** Where requests inside an opened CONNECT tunnel go. */
struct Origin
{
    Scheme scheme = Scheme::Http;
    HostPort endpoint;

    /** "host", with ":port" unless it is the scheme's own. */
    std::string authority() const;
};

/** One request's absolute URL in its normal form and where it leads. */
struct RequestTarget
{
    std::string url; //!< "scheme://authority/path?query": host lower case, no default port, no fragment
    Origin origin;
    std::size_t pathOffset = 0; //!< of the path's "/" in `url`

    std::string_view pathAndQuery() const { return std::string_view(url).substr(pathOffset); }
    std::string_view path() const;
};

/** "host", "host:port" or "[address]:port"; no port means `portIfAbsent`, and 0 for that makes it mandatory.
 */
std::optional<HostPort> parseAuthority(std::string_view text, std::uint16_t portIfAbsent);

/** The target of "GET http://host/path"; nothing for other schemes, user information or a malformed
 * authority. */
std::optional<RequestTarget> targetOfAbsoluteForm(std::string_view text);

/** The target of "GET /path" within `origin`; nothing when `text` does not start with a slash. */
std::optional<RequestTarget> targetOfOriginForm(const Origin& origin, std::string_view text);

} // namespace gateway
