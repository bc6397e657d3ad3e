#include "vltcloudsvr/transfers/HttpLink.h"

#include "base/StreamSockets.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/ssl/host_name_verification.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/ssl/ssl_stream.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <limits>
#include <optional>
#include <sys/socket.h>
#include <utility>

namespace vlt::cloudsvr {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using Tcp = asio::ip::tcp;
using ErrorCode = boost::system::error_code;

constexpr std::size_t inputSize = 64UL * 1024;
constexpr int connectSeconds = 30;
constexpr std::size_t longestHead = 64UL * 1024;

} // namespace

class HttpLink::Parts
{
public:
    using Plain = beast::tcp_stream;
    using Secure = beast::ssl_stream<beast::tcp_stream>;

    Outcome<Done> send(const Request& request);
    Outcome<Done> write(const char* data, std::size_t size);
    Outcome<std::size_t> read(char* data, std::size_t size);
    Outcome<Head> receive();
    Outcome<std::size_t> readBody(char* data, std::size_t size);
    Outcome<std::string> readAll(std::size_t limit);
    void close();
    void interrupt();

    Endpoint endpoint; // of the next connection
    std::atomic<bool> isInterrupted{false};

private:
    Outcome<Done> connect();
    Outcome<Done> shakeHands();
    Outcome<Done> parseMore();
    void parseInput(ErrorCode& error);
    bool isUsable();
    Tcp::socket& socket() { return layer().socket(); }
    Plain& layer() { return m_secure ? beast::get_lowest_layer(*m_secure) : *m_plain; }
    Failure failed(const std::string& text);

    /** Runs one operation to its end; `start` gets the handler. */
    template <typename Start>
    std::pair<ErrorCode, std::size_t> await(Start start)
    {
        std::optional<std::pair<ErrorCode, std::size_t>> result;
        m_io.restart();
        start([&result](const ErrorCode& error, auto... moved) {
            result.emplace(error, (std::size_t(0) + ... + std::size_t(moved)));
        });
        while (!result)
            m_io.run_one();
        return *result;
    }

    asio::io_context m_io{1};
    asio::ssl::context m_tls{asio::ssl::context::tls_client};
    bool m_hasAuthorities = false;
    std::optional<Plain> m_plain;
    std::optional<Secure> m_secure;
    std::optional<http::response_parser<http::string_body>> m_parser;
    std::array<char, inputSize> m_input{};
    std::size_t m_inputBegin = 0; //!< what was read beyond the head
    std::size_t m_inputEnd = 0;
    std::size_t m_headBytes = 0; //!< of the answer's head, those that were parsed
    std::chrono::seconds m_patience{0};
    std::string m_method;
    long long m_left = 0; //!< of the answer's body; -1 when only its end tells
    bool m_isLast = false;
};

HttpLink::Failure HttpLink::Parts::failed(const std::string& text)
{
    close();
    return {text, isInterrupted.load()};
}

void HttpLink::Parts::close()
{
    ErrorCode ignored;
    if (m_secure || m_plain)
        socket().close(ignored);
    m_secure.reset();
    m_plain.reset();
    m_inputBegin = m_inputEnd = 0;
    m_left = 0;
    m_isLast = false;
}

void HttpLink::Parts::interrupt()
{
    isInterrupted = true;
    // It may run only when the next operation does, and that one must not suffer from it.
    asio::post(m_io, [this] {
        if (isInterrupted && (m_plain || m_secure))
            layer().cancel();
    });
}

bool HttpLink::Parts::isUsable()
{
    if ((!m_plain && !m_secure) || m_isLast || m_left != 0 || m_inputBegin != m_inputEnd)
        return false;
    char byte = 0;
    // Nothing to read is right; the end of the stream, or bytes that nobody asked for, are not.
    return ::recv(socket().native_handle(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) < 0 &&
           (errno == EAGAIN || errno == EWOULDBLOCK);
}

HttpLink::Outcome<HttpLink::Done> HttpLink::Parts::connect()
{
    close();
    ErrorCode error;
    Tcp::resolver resolver(m_io);
    const auto addresses = resolver.resolve(endpoint.connectHost, endpoint.connectPort, error);
    if (error)
        return failed("cannot find " + endpoint.connectHost + ": " + error.message());
    m_plain.emplace(m_io);
    m_plain->expires_after(std::chrono::seconds(connectSeconds));
    // The stream's own time-out covers the connections that are tried.
    error = asio::error::not_found;
    for (auto address = addresses.begin();
         error && error != beast::error::timeout && !isInterrupted && address != addresses.end(); ++address) {
        socket().close(error);
        base::openStream(socket(), address->endpoint().protocol(), error);
        if (!error)
            error = await([&](auto handler) { m_plain->async_connect(address->endpoint(), handler); }).first;
    }
    if (error)
        return failed("cannot connect to " + endpoint.connectHost + ":" + endpoint.connectPort + ": " +
                      error.message());
    socket().set_option(Tcp::no_delay(true), error);
    return endpoint.isTls ? shakeHands() : Outcome<Done>(Done());
}

HttpLink::Outcome<HttpLink::Done> HttpLink::Parts::shakeHands()
{
    ErrorCode error;
    if (!endpoint.isMapped && !m_hasAuthorities) {
        m_tls.set_default_verify_paths(error);
        m_hasAuthorities = true;
    }
    m_secure.emplace(std::move(*m_plain), m_tls);
    m_plain.reset();
    SSL_set_tlsext_host_name(m_secure->native_handle(), endpoint.host.c_str());
    if (endpoint.isMapped) {
        m_secure->set_verify_mode(asio::ssl::verify_none, error);
    } else {
        m_secure->set_verify_mode(asio::ssl::verify_peer, error);
        m_secure->set_verify_callback(asio::ssl::host_name_verification(endpoint.host), error);
    }
    error = await([&](auto handler) {
                m_secure->async_handshake(asio::ssl::stream_base::client, handler);
            }).first;
    return error ? Outcome<Done>(failed("no secure connection: " + error.message())) : Outcome<Done>(Done());
}

HttpLink::Outcome<HttpLink::Done> HttpLink::Parts::send(const Request& request)
{
    if (isInterrupted)
        return failed("interrupted");
    if (!isUsable()) {
        const auto connected = connect();
        if (!connected)
            return connected;
    }
    m_patience = std::chrono::seconds(request.patienceSeconds);
    m_method = request.method;
    m_parser.reset();
    std::string head = request.method + " " + endpoint.basePath + request.path +
                       " HTTP/1.1\r\nHost: " + endpoint.hostHeader +
                       "\r\nAccept: */*\r\nUser-Agent: vltcloudsvr\r\n";
    if (!endpoint.cookies.empty())
        head += "Cookie: " + endpoint.cookies + "\r\n";
    if (request.method != "GET" && request.method != "HEAD")
        head += "Content-Length: " + std::to_string(request.length) + "\r\n";
    head += request.headers + "\r\n";
    return write(head.data(), head.size());
}

HttpLink::Outcome<HttpLink::Done> HttpLink::Parts::write(const char* data, std::size_t size)
{
    while (size > 0) {
        if (isInterrupted)
            return failed("interrupted");
        if (!m_plain && !m_secure)
            return failed("the connection is closed");
        layer().expires_after(m_patience);
        const asio::const_buffer buffer(data, size);
        const auto [error, moved] = await([&, &bytes = buffer](auto handler) {
            m_secure ? m_secure->async_write_some(bytes, handler) : m_plain->async_write_some(bytes, handler);
        });
        // The connection stays: an answer may have come before the end.
        if (error)
            return Failure{"sending failed: " + error.message(), isInterrupted.load()};
        data += moved;
        size -= moved;
    }
    return Done();
}

HttpLink::Outcome<std::size_t> HttpLink::Parts::read(char* data, std::size_t size)
{
    if (isInterrupted)
        return failed("interrupted");
    if (!m_plain && !m_secure)
        return failed("the connection is closed");
    layer().expires_after(m_patience);
    const asio::mutable_buffer buffer(data, size);
    const auto [error, moved] = await([&, &bytes = buffer](auto handler) {
        m_secure ? m_secure->async_read_some(bytes, handler) : m_plain->async_read_some(bytes, handler);
    });
    if (error == asio::error::eof || error == asio::ssl::error::stream_truncated)
        return std::size_t(0);
    return error ? Outcome<std::size_t>(failed("receiving failed: " + error.message()))
                 : Outcome<std::size_t>(moved);
}

/** Reads on and gives the parser what it takes; what it leaves stays in the input. */
HttpLink::Outcome<HttpLink::Done> HttpLink::Parts::parseMore()
{
    if (m_inputBegin > 0) {
        std::copy(m_input.begin() + m_inputBegin, m_input.begin() + m_inputEnd, m_input.begin());
        m_inputEnd -= std::exchange(m_inputBegin, 0);
    }
    if (m_inputEnd == m_input.size())
        return failed("the answer's head is too long");
    const auto got = read(m_input.data() + m_inputEnd, m_input.size() - m_inputEnd);
    if (!got)
        return got.error();
    m_inputEnd += *got;
    ErrorCode error;
    if (*got == 0)
        m_parser->put_eof(error);
    else
        parseInput(error);
    if (*got == 0 && !error && !m_parser->is_done())
        return failed("the connection ended without an answer");
    return error ? Outcome<Done>(failed("the answer is not right: " + error.message()))
                 : Outcome<Done>(Done());
}

void HttpLink::Parts::parseInput(ErrorCode& error)
{
    const std::size_t taken =
        m_parser->put(asio::buffer(m_input.data() + m_inputBegin, m_inputEnd - m_inputBegin), error);
    m_inputBegin += taken;
    // The parser itself looks at one field after the other and never at their sum.
    m_headBytes += m_parser->is_header_done() ? 0 : taken;
    if (m_headBytes > longestHead)
        error = http::error::header_limit;
    if (error == http::error::need_more)
        error = {};
}

HttpLink::Outcome<HttpLink::Head> HttpLink::Parts::receive()
{
    m_parser.emplace();
    m_parser->header_limit(longestHead);
    m_parser->body_limit(std::numeric_limits<std::uint64_t>::max());
    m_parser->skip(m_method == "HEAD");
    m_inputBegin = m_inputEnd = m_headBytes = 0;
    while (!m_parser->is_header_done()) {
        const auto parsed = parseMore();
        if (!parsed)
            return parsed.error();
    }
    const auto& answer = m_parser->get();
    Head head;
    head.status = int(answer.result_int());
    head.etag = std::string(answer[http::field::etag]);
    head.contentRange = std::string(answer[http::field::content_range]);
    if (m_parser->is_done())
        head.length = 0;
    else if (const auto length = m_parser->content_length())
        head.length = static_cast<long long>(*length);
    m_left = head.length;
    m_isLast = !m_parser->keep_alive();
    return head;
}

HttpLink::Outcome<std::size_t> HttpLink::Parts::readBody(char* data, std::size_t size)
{
    if (m_left < 0)
        return failed("the answer does not say how long it is");
    size = std::size_t(std::min<long long>(m_left, static_cast<long long>(size)));
    if (size == 0)
        return std::size_t(0);
    std::size_t moved = 0;
    if (m_inputBegin < m_inputEnd) {
        moved = std::min(size, m_inputEnd - m_inputBegin);
        std::copy_n(m_input.data() + m_inputBegin, moved, data);
        m_inputBegin += moved;
    } else {
        const auto got = read(data, size);
        if (!got)
            return got;
        if (*got == 0)
            return failed("the connection ended within the answer");
        moved = *got;
    }
    m_left -= static_cast<long long>(moved);
    return moved;
}

HttpLink::Outcome<std::string> HttpLink::Parts::readAll(std::size_t limit)
{
    if (m_left > static_cast<long long>(limit))
        return failed("the answer is too long");
    if (m_left < 0)
        m_parser->body_limit(limit);
    m_parser->eager(true);
    ErrorCode error;
    if (!m_parser->is_done() && m_inputBegin < m_inputEnd)
        parseInput(error);
    if (error)
        return failed("the answer is not right: " + error.message());
    while (!m_parser->is_done()) {
        const auto parsed = parseMore();
        if (!parsed)
            return parsed.error();
    }
    m_left = 0;
    return std::move(m_parser->get().body());
}

HttpLink::HttpLink()
    : m_parts(std::make_unique<Parts>())
{
}

HttpLink::~HttpLink() = default;

void HttpLink::setEndpoint(const Endpoint& endpoint)
{
    if (!endpoint.isSamePlace(m_parts->endpoint))
        m_parts->close();
    m_parts->endpoint = endpoint;
}

HttpLink::Outcome<HttpLink::Done> HttpLink::send(const Request& request)
{
    return m_parts->send(request);
}

HttpLink::Outcome<HttpLink::Done> HttpLink::sendBody(const char* data, std::size_t size)
{
    return m_parts->write(data, size);
}

HttpLink::Outcome<HttpLink::Head> HttpLink::receive()
{
    return m_parts->receive();
}

HttpLink::Outcome<std::size_t> HttpLink::receiveBody(char* data, std::size_t size)
{
    return m_parts->readBody(data, size);
}

HttpLink::Outcome<std::string> HttpLink::receiveAll(std::size_t limit)
{
    return m_parts->readAll(limit);
}

void HttpLink::close()
{
    m_parts->close();
}

void HttpLink::interrupt()
{
    m_parts->interrupt();
}

void HttpLink::resume()
{
    m_parts->isInterrupted = false;
}

} // namespace vlt::cloudsvr
