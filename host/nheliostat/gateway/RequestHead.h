#pragma once

#include <boost/asio/buffer.hpp>
#include <boost/beast/http/basic_parser.hpp>
#include <boost/beast/http/error.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace gateway {

struct HeaderField
{
    boost::beast::http::field id = boost::beast::http::field::unknown;
    std::string_view name;
    std::string_view value;
};

/**
 * Start line and fields of one message. The texts point into the head's own storage, so that they stay valid
 * until the next `clear`, whatever happens to the buffer they were parsed from. Not copyable for that reason.
 */
class MessageHead
{
public:
    MessageHead() = default;
    MessageHead(const MessageHead&) = delete;
    MessageHead& operator=(const MessageHead&) = delete;

    /** Forgets everything and makes room for a head of `capacity` bytes. */
    void reset(std::size_t capacity);
    /** Copies `text` into the head's storage. */
    std::string_view store(std::string_view text);

    std::vector<HeaderField> fields;
    unsigned version = 11; //!< 10 or 11

private:
    std::string m_storage;
};

class RequestHead : public MessageHead
{
public:
    void reset(std::size_t capacity);
    void addField(boost::beast::http::field id, std::string_view name, std::string_view value);

    boost::beast::http::verb verb = boost::beast::http::verb::unknown;
    std::string_view method;
    std::string_view target;

    // The fields that the gateway itself acts on.
    std::string_view viewId;
    std::string_view proxyAuthorization;
    std::string_view ifNoneMatch;
    std::string_view ifModifiedSince;
    bool namesTransferCoding = false;
    bool expectsContinue = false;
    /** A page, script or style is asked for: without content it is of no use. */
    bool needsContent = false;
};

/**
 * Parses what comes next of a body. The library's own function asserts that a last chunk comes with five
 * bytes at least, which no message has fewer of; a peer that sends them one by one must not end the program
 * with that.
 */
template <typename Parser>
std::size_t parseBody(Parser& parser, boost::asio::const_buffer input, boost::beast::error_code& error)
{
    constexpr std::size_t shortest = 5;
    if (parser.isAtChunkHead() && input.size() < shortest) {
        error = boost::beast::http::error::need_more;
        return 0;
    }
    return parser.put(input, error);
}

/** Parses one request: the head into a RequestHead, then the body, decoded, into a text. */
class RequestParser : public boost::beast::http::basic_parser<true>
{
public:
    explicit RequestParser(RequestHead& head);
    /** Where body bytes are appended from now on; nullptr drops them. */
    void collectBody(std::string* body) { m_body = body; }
    /** The head of a chunk is what comes next. */
    bool isAtChunkHead() const { return m_headDone && chunked() && m_chunkLeft == 0; }

private:
    using string_view = boost::beast::string_view;
    using error_code = boost::beast::error_code;

    void on_request_impl(boost::beast::http::verb verb, string_view method, string_view target, int version,
                         error_code& error) override;
    void on_response_impl(int, string_view, int, error_code&) override {}
    void on_field_impl(boost::beast::http::field id, string_view name, string_view value,
                       error_code& error) override;
    void on_header_impl(error_code& error) override;
    void on_body_init_impl(const boost::optional<std::uint64_t>&, error_code&) override {}
    std::size_t on_body_impl(string_view body, error_code& error) override;
    void on_chunk_header_impl(std::uint64_t size, string_view, error_code&) override { m_chunkLeft = size; }
    std::size_t on_chunk_body_impl(std::uint64_t remain, string_view body, error_code& error) override;
    void on_finish_impl(error_code&) override {}

    RequestHead& m_head;
    std::string* m_body = nullptr;
    bool m_headDone = false;
    std::uint64_t m_chunkLeft = 0; //!< of the chunk under way, bytes
};

} // namespace gateway
