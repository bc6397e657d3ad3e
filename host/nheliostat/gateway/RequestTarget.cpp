#include "gateway/RequestTarget.h"

#include "gateway/HeaderRules.h"

#include <algorithm>
#include <charconv>

namespace gateway {
namespace {

std::string_view schemeText(Scheme scheme)
{
    return scheme == Scheme::Https ? "https://" : "http://";
}

bool isHostCharacter(unsigned char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || c == '-' || c == '.' || c == '_';
}

bool isBracketedAddress(std::string_view host)
{
    return host.size() > 2 && host.front() == '[' && host.back() == ']' &&
           std::all_of(host.begin() + 1, host.end() - 1, [](unsigned char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || c == ':' || c == '.';
           });
}

std::optional<std::uint16_t> parsePort(std::string_view text)
{
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size() || port == 0)
        return std::nullopt;
    return port;
}

RequestTarget makeTarget(Origin origin, std::string_view pathAndQuery)
{
    RequestTarget target;
    const std::string authority = origin.authority();
    target.url.reserve(9 + authority.size() + pathAndQuery.size());
    target.url.append(schemeText(origin.scheme)).append(authority);
    target.pathOffset = target.url.size();
    if (pathAndQuery.empty() || pathAndQuery.front() != '/')
        target.url.push_back('/');
    target.url.append(pathAndQuery.substr(0, pathAndQuery.find('#')));
    target.origin = std::move(origin);
    return target;
}

} // namespace

std::uint16_t defaultPort(Scheme scheme)
{
    return scheme == Scheme::Https ? 443 : 80;
}

std::string HostPort::text() const
{
    return host + ':' + std::to_string(port);
}

std::string HostPort::bareHost() const
{
    return host.front() == '[' ? host.substr(1, host.size() - 2) : host;
}

std::string Origin::authority() const
{
    return endpoint.port == defaultPort(scheme) ? endpoint.host : endpoint.text();
}

std::string_view RequestTarget::path() const
{
    const std::string_view text = pathAndQuery();
    return text.substr(0, text.find('?'));
}

std::optional<HostPort> parseAuthority(std::string_view text, std::uint16_t portIfAbsent)
{
    HostPort result;
    const std::size_t bracket = text.rfind(']');
    const std::size_t colon = text.find(':', bracket == std::string_view::npos ? 0 : bracket);
    result.host = text.substr(0, colon);
    std::transform(result.host.begin(), result.host.end(), result.host.begin(), lowerAscii);
    const bool plainHost =
        !result.host.empty() && std::all_of(result.host.begin(), result.host.end(),
                                            [](unsigned char c) { return isHostCharacter(c); });
    if (!plainHost && !isBracketedAddress(result.host))
        return std::nullopt;

    const std::string_view portText = colon == std::string_view::npos ? "" : text.substr(colon + 1);
    const std::optional<std::uint16_t> port = portText.empty() ? portIfAbsent : parsePort(portText);
    if (!port || *port == 0)
        return std::nullopt;
    result.port = *port;
    return result;
}

std::optional<RequestTarget> targetOfAbsoluteForm(std::string_view text)
{
    const std::size_t schemeEnd = text.find("://");
    if (schemeEnd == std::string_view::npos)
        return std::nullopt;
    const std::string_view schemeName = text.substr(0, schemeEnd);
    Origin origin;
    if (equalsIgnoringCase(schemeName, "https"))
        origin.scheme = Scheme::Https;
    else if (!equalsIgnoringCase(schemeName, "http"))
        return std::nullopt;

    const std::string_view rest = text.substr(schemeEnd + 3);
    const std::size_t authorityEnd = std::min(rest.find_first_of("/?#"), rest.size());
    std::optional<HostPort> endpoint =
        parseAuthority(rest.substr(0, authorityEnd), defaultPort(origin.scheme));
    if (!endpoint)
        return std::nullopt;
    origin.endpoint = std::move(*endpoint);
    return makeTarget(std::move(origin), rest.substr(authorityEnd));
}

std::optional<RequestTarget> targetOfOriginForm(const Origin& origin, std::string_view text)
{
    if (text.empty() || text.front() != '/')
        return std::nullopt;
    return makeTarget(origin, text);
}

} // namespace gateway
