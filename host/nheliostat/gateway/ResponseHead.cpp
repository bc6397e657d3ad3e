#include "gateway/ResponseHead.h"

#include "gateway/GatewayLimits.h"

#include <boost/beast/http/error.hpp>

#include <limits>

namespace gateway {

namespace http = boost::beast::http;

void ResponseHead::reset(std::size_t capacity)
{
    MessageHead::reset(capacity);
    status = 0;
    reason = {};
}

ResponseParser::ResponseParser(ResponseHead& head, std::string& body, bool bodiless)
    : m_head(head)
    , m_body(body)
{
    header_limit(GatewayLimits::answerHeadBytes);
    body_limit(std::numeric_limits<std::uint64_t>::max());
    skip(bodiless);
}

void ResponseParser::on_response_impl(int status, string_view reason, int version, error_code& error)
{
    if (status < 100) // no browser would take it
        error = http::error::bad_status;
    m_head.status = status;
    m_head.reason = m_head.store({reason.data(), reason.size()});
    m_head.version = static_cast<unsigned>(version);
}

void ResponseParser::on_field_impl(http::field id, string_view name, string_view value, error_code&)
{
    if (m_headDone) // trailers end here
        return;
    const std::string_view storedName = m_head.store({name.data(), name.size()});
    m_head.fields.push_back({id, storedName, m_head.store({value.data(), value.size()})});
}

void ResponseParser::on_header_impl(error_code&)
{
    m_headDone = true;
}

std::size_t ResponseParser::on_body_impl(string_view body, error_code&)
{
    m_body.append(body.data(), body.size());
    return body.size();
}

std::size_t ResponseParser::on_chunk_body_impl(std::uint64_t, string_view body, error_code& error)
{
    m_chunkLeft -= body.size();
    return on_body_impl(body, error);
}

} // namespace gateway
