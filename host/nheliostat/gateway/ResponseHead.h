#pragma once

#include "gateway/RequestHead.h"

namespace gateway {

class ResponseHead : public MessageHead
{
public:
    void reset(std::size_t capacity);

    int status = 0;
    std::string_view reason;
};

/** Parses one response: the head into a ResponseHead, then the body, decoded, into a text. */
class ResponseParser : public boost::beast::http::basic_parser<false>
{
public:
    /** `bodiless`: the response to a HEAD request, which announces a body that never comes. */
    ResponseParser(ResponseHead& head, std::string& body, bool bodiless);
    /** The head of a chunk is what comes next. */
    bool isAtChunkHead() const { return m_headDone && chunked() && m_chunkLeft == 0; }

private:
    using string_view = boost::beast::string_view;
    using error_code = boost::beast::error_code;

    void on_request_impl(boost::beast::http::verb, string_view, string_view, int, error_code&) override {}
    void on_response_impl(int status, string_view reason, int version, error_code& error) override;
    void on_field_impl(boost::beast::http::field id, string_view name, string_view value,
                       error_code& error) override;
    void on_header_impl(error_code& error) override;
    void on_body_init_impl(const boost::optional<std::uint64_t>&, error_code&) override {}
    std::size_t on_body_impl(string_view body, error_code& error) override;
    void on_chunk_header_impl(std::uint64_t size, string_view, error_code&) override { m_chunkLeft = size; }
    std::size_t on_chunk_body_impl(std::uint64_t remain, string_view body, error_code& error) override;
    void on_finish_impl(error_code&) override {}

    ResponseHead& m_head;
    std::string& m_body;
    bool m_headDone = false;
    std::uint64_t m_chunkLeft = 0; //!< of the chunk under way, bytes
};

} // namespace gateway
