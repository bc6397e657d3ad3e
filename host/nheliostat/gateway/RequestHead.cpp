#include "gateway/RequestHead.h"

#include "gateway/GatewayLimits.h"
#include "gateway/HeaderRules.h"
#include "gateway/RequestGateway.h"

#include <limits>

namespace gateway {

namespace http = boost::beast::http;

void MessageHead::reset(std::size_t capacity)
{
    fields.clear();
    version = 11;
    m_storage.clear();
    m_storage.reserve(capacity);
}

std::string_view MessageHead::store(std::string_view text)
{
    // Views into the storage must not move; a head is never longer than the bytes it was parsed from.
    if (m_storage.size() + text.size() > m_storage.capacity())
        return {};
    const std::size_t start = m_storage.size();
    m_storage.append(text);
    return std::string_view(m_storage).substr(start);
}

void RequestHead::reset(std::size_t capacity)
{
    MessageHead::reset(capacity);
    verb = http::verb::unknown;
    method = target = viewId = proxyAuthorization = ifNoneMatch = ifModifiedSince = {};
    namesTransferCoding = expectsContinue = needsContent = false;
}

void RequestHead::addField(http::field id, std::string_view name, std::string_view value)
{
    switch (id) {
    case http::field::proxy_authorization:
        proxyAuthorization = value;
        break;
    case http::field::if_none_match:
        ifNoneMatch = value;
        break;
    case http::field::if_modified_since:
        ifModifiedSince = value;
        break;
    case http::field::transfer_encoding:
        namesTransferCoding = true;
        break;
    case http::field::expect:
        expectsContinue = equalsIgnoringCase(value, "100-continue");
        break;
    case http::field::unknown:
        if (equalsIgnoringCase(name, RequestGateway::viewHeader))
            viewId = value;
        else if (equalsIgnoringCase(name, "Sec-Fetch-Mode"))
            needsContent = needsContent || equalsIgnoringCase(value, "navigate");
        else if (equalsIgnoringCase(name, "Sec-Fetch-Dest"))
            needsContent =
                needsContent || equalsIgnoringCase(value, "script") || equalsIgnoringCase(value, "style");
        break;
    default:
        break;
    }
    fields.push_back({id, name, value});
}

RequestParser::RequestParser(RequestHead& head)
    : m_head(head)
{
    header_limit(GatewayLimits::requestHeadBytes);
    body_limit(std::numeric_limits<std::uint64_t>::max());
}

void RequestParser::on_request_impl(http::verb verb, string_view method, string_view target, int version,
                                    error_code&)
{
    m_head.verb = verb;
    m_head.method = m_head.store({method.data(), method.size()});
    m_head.target = m_head.store({target.data(), target.size()});
    m_head.version = static_cast<unsigned>(version);
}

void RequestParser::on_field_impl(http::field id, string_view name, string_view value, error_code&)
{
    if (m_headDone) // trailers end here
        return;
    const std::string_view storedName = m_head.store({name.data(), name.size()});
    m_head.addField(id, storedName, m_head.store({value.data(), value.size()}));
}

void RequestParser::on_header_impl(error_code&)
{
    m_headDone = true;
}

std::size_t RequestParser::on_body_impl(string_view body, error_code&)
{
    if (m_body)
        m_body->append(body.data(), body.size());
    return body.size();
}

std::size_t RequestParser::on_chunk_body_impl(std::uint64_t, string_view body, error_code& error)
{
    m_chunkLeft -= body.size();
    return on_body_impl(body, error);
}

} // namespace gateway
