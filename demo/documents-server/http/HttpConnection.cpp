#include "http/HttpConnection.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include <boost/asio/ssl.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/ssl.hpp>

#include <QDateTime>
#include <QLocale>

#include "http/Replies.h"

namespace documents {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using boost::system::error_code;

constexpr std::uint64_t bodyLimit = 64ULL * 1024 * 1024;
constexpr std::uint32_t headLimit = 32 * 1024;
constexpr std::size_t drainSize = 65536;
constexpr std::size_t filePieceSize = 256 * 1024;
constexpr std::chrono::seconds silenceLimit(60);
constexpr std::chrono::seconds farewellLimit(2);

using PlainStream = beast::tcp_stream;
using TlsStream = beast::ssl_stream<beast::tcp_stream>;

QByteArray toBytes(boost::string_view text)
{
    return {text.data(), static_cast<int>(text.size())};
}

beast::string_view toView(const QByteArray& bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

bool hasBody(int status)
{
    return status >= 200 && status != 204 && status != 304;
}

HttpRequest toRequest(http::request<http::string_body>& message)
{
    HttpRequest request;
    request.method = toBytes(message.method_string());
    request.target = toBytes(message.target());
    request.cookie = toBytes(message[http::field::cookie]);
    request.ifNoneMatch = toBytes(message[http::field::if_none_match]);
    request.ifModifiedSince = toBytes(message[http::field::if_modified_since]);
    request.body = toBytes(message.body());
    for (const auto& field : message.base())
        request.headers.emplace_back(toBytes(field.name_string()), toBytes(field.value()));
    return request;
}

std::string headText(const HttpReply& reply, unsigned version, bool keepAlive)
{
    http::response<http::empty_body> head(static_cast<http::status>(reply.status), version);
    const QString date = QLocale::c().toString(QDateTime::currentDateTimeUtc(),
                                               QStringLiteral("ddd, dd MMM yyyy hh:mm:ss 'GMT'"));
    head.set(http::field::server, "skyleaf-documents-server");
    head.set(http::field::date, toView(date.toLatin1()));
    if (!reply.contentType.isEmpty())
        head.set(http::field::content_type, toView(reply.contentType));
    for (const auto& [name, value] : reply.headers)
        head.insert(toView(name), toView(value));
    if (hasBody(reply.status))
        head.content_length(static_cast<std::uint64_t>(reply.bodySize()));
    head.keep_alive(keepAlive);

    std::ostringstream text;
    text << head.base();
    return text.str();
}

/** What to tell a client whose request could not be read; nothing when the connection itself failed. */
std::optional<HttpReply> replyToBrokenRequest(const error_code& error, const QByteArray& target)
{
    if (error == http::error::body_limit)
        return errorReply(target, 413, QStringLiteral("TooLarge"),
                          QStringLiteral("The request's body is larger than 64 MiB."));
    if (error == http::error::header_limit)
        return errorReply(target, 431, QStringLiteral("HeadTooLarge"),
                          QStringLiteral("The request's head is larger than 32 KiB."));
    const bool malformed = error.category() == make_error_code(http::error::bad_method).category() &&
                           error != http::error::end_of_stream && error != http::error::partial_message;
    if (malformed)
        return errorReply(
            target, 400, QStringLiteral("BadRequest"),
            QStringLiteral("The request is malformed: %1.").arg(QString::fromStdString(error.message())));
    return std::nullopt;
}

template <typename Stream>
class HttpConnection : public std::enable_shared_from_this<HttpConnection<Stream>>
{
    static constexpr bool isTls = std::is_same_v<Stream, TlsStream>;

public:
    template <typename... StreamArguments>
    explicit HttpConnection(const ConnectionServices& services, StreamArguments&&... arguments)
        : m_services(services)
        , m_stream(std::forward<StreamArguments>(arguments)...)
        , m_timer(m_stream.get_executor())
    {
    }

    void start()
    {
        error_code ignored;
        socket().set_option(asio::ip::tcp::no_delay(true), ignored);
        wait(m_services.shaper.setUpDelay(isTls), &HttpConnection::shakeHands);
    }

private:
    using Step = void (HttpConnection::*)();

    template <typename Handler>
    auto bound(Handler handler)
    {
        return beast::bind_front_handler(handler, this->shared_from_this());
    }

    beast::tcp_stream& transport() { return beast::get_lowest_layer(m_stream); }
    asio::ip::tcp::socket& socket() { return transport().socket(); }

    void wait(std::chrono::steady_clock::duration duration, Step next)
    {
        if (duration <= std::chrono::steady_clock::duration::zero())
            return (this->*next)();
        m_afterWait = next;
        m_timer.expires_after(duration);
        m_timer.async_wait(bound(&HttpConnection::onWaited));
    }

    void onWaited(error_code error)
    {
        if (!error)
            (this->*m_afterWait)();
    }

    void shakeHands()
    {
        transport().expires_after(silenceLimit);
        if constexpr (isTls)
            m_stream.async_handshake(asio::ssl::stream_base::server, bound(&HttpConnection::onShaken));
        else
            readHead();
    }

    void onShaken(error_code error)
    {
        if (!error)
            readHead();
    }

    void readHead()
    {
        m_parser.emplace();
        m_parser->header_limit(headLimit);
        m_parser->body_limit(bodyLimit);
        transport().expires_after(silenceLimit);
        http::async_read_header(m_stream, m_buffer, *m_parser, bound(&HttpConnection::onHead));
    }

    void onHead(error_code error, std::size_t)
    {
        if (error)
            return onBroken(error);
        if (!beast::iequals(m_parser->get()[http::field::expect], "100-continue"))
            return readBody();
        m_head = "HTTP/1.1 100 Continue\r\n\r\n";
        asio::async_write(m_stream, asio::buffer(m_head), bound(&HttpConnection::onContinueSent));
    }

    void onContinueSent(error_code error, std::size_t)
    {
        if (!error)
            readBody();
    }

    void readBody()
    {
        transport().expires_after(silenceLimit);
        http::async_read(m_stream, m_buffer, *m_parser, bound(&HttpConnection::onRequest));
    }

    void onBroken(error_code error)
    {
        HttpRequest request;
        request.target = toBytes(m_parser->get().target());
        request.method = toBytes(m_parser->get().method_string());
        const auto reply = replyToBrokenRequest(error, request.target);
        if (!reply)
            return close();
        Answer answer;
        answer.reply = *reply;
        m_keepAlive = false;
        prepare(request, std::move(answer), 11);
    }

    void onRequest(error_code error, std::size_t)
    {
        if (error)
            return onBroken(error);
        auto message = m_parser->release();
        m_keepAlive = message.keep_alive();
        const HttpRequest request = toRequest(message);
        prepare(request, m_services.answer(request), message.version());
    }

    void prepare(const HttpRequest& request, Answer&& answer, unsigned version)
    {
        m_answer = std::move(answer);
        m_entry = {m_services.clock(),
                   request.method,
                   request.target,
                   m_answer.reply.status,
                   0,
                   request.headers,
                   loggedBody(request.method, request.body)};
        m_head = headText(m_answer.reply, version, m_keepAlive);
        qint64 bodyBytes =
            request.method == "HEAD" || !hasBody(m_answer.reply.status) ? 0 : m_answer.reply.bodySize();
        if (m_answer.cutAfter)
            bodyBytes = std::min(bodyBytes, *m_answer.cutAfter);
        m_total = m_head.size() + static_cast<std::size_t>(bodyBytes);
        m_sent = 0;
        m_pieceGone.reset();
        const auto lineDelay =
            m_answer.shaped ? m_services.shaper.requestDelay() : std::chrono::milliseconds(0);
        wait(lineDelay + m_answer.delay, m_answer.reset ? &HttpConnection::reset : &HttpConnection::sendNext);
    }

    void sendNext()
    {
        if (m_sent == m_total)
            return finish();
        const std::size_t remaining =
            m_answer.reply.file ? std::min(m_total - m_sent, filePieceSize) : m_total - m_sent;
        if (!m_answer.shaped) {
            m_piece = remaining;
            return writePiece();
        }
        m_piece = m_services.shaper.pieceSize(remaining);
        const auto now = std::chrono::steady_clock::now();
        m_pieceGone = m_services.shaper.reserve(m_piece, now, m_pieceGone);
        wait(*m_pieceGone - now, &HttpConnection::writePiece);
    }

    void writePiece()
    {
        const std::size_t headSent = std::min(m_sent, m_head.size());
        const std::size_t fromHead = std::min(m_piece, m_head.size() - headSent);
        const std::size_t bodySent = m_sent - headSent;
        // Only parts with bytes: a TLS stream given an empty first buffer writes nothing, again and again.
        std::vector<asio::const_buffer> buffers;
        if (fromHead > 0)
            buffers.emplace_back(m_head.data() + headSent, fromHead);
        if (m_piece > fromHead) {
            const char* body = bodyPiece(bodySent, m_piece - fromHead);
            if (!body)
                return breakOff();
            buffers.emplace_back(body, m_piece - fromHead);
        }
        transport().expires_after(silenceLimit);
        asio::async_write(m_stream, buffers, bound(&HttpConnection::onPieceWritten));
    }

    /** Null when the file cannot be read any more. */
    const char* bodyPiece(std::size_t offset, std::size_t size)
    {
        if (!m_answer.reply.file)
            return m_answer.reply.body.constData() + offset;
        m_filePiece.resize(size);
        const auto wanted = static_cast<qint64>(size);
        return m_answer.reply.file->read(m_filePiece.data(), wanted) == wanted ? m_filePiece.data() : nullptr;
    }

    void onPieceWritten(error_code error, std::size_t bytes)
    {
        m_sent += bytes;
        if (!error)
            return sendNext();
        breakOff();
    }

    void breakOff()
    {
        record();
        close();
    }

    void record()
    {
        m_entry.bytes = static_cast<qint64>(m_sent);
        m_services.log.record(m_entry);
    }

    void finish()
    {
        record();
        if (m_answer.cutAfter)
            return close();
        m_answer = {};
        if (m_keepAlive)
            return readHead();
        sayFarewell();
    }

    void reset()
    {
        m_entry.status = 0;
        record();
        error_code ignored;
        socket().set_option(asio::socket_base::linger(true, 0), ignored);
        close();
    }

    /** Ends in order: a client that is still sending gets the reply before it notices the end. */
    void sayFarewell()
    {
        transport().expires_after(farewellLimit);
        if constexpr (isTls)
            m_stream.async_shutdown(bound(&HttpConnection::onTlsEnded));
        else
            endTransport();
    }

    void onTlsEnded(error_code) { endTransport(); }

    void endTransport()
    {
        error_code error;
        socket().shutdown(asio::ip::tcp::socket::shutdown_send, error);
        if (error)
            return close();
        m_rest.resize(drainSize);
        drain();
    }

    void drain() { transport().async_read_some(asio::buffer(m_rest), bound(&HttpConnection::onDrained)); }

    void onDrained(error_code error, std::size_t)
    {
        if (error)
            return close();
        drain();
    }

    void close()
    {
        error_code ignored;
        socket().close(ignored);
    }

    const ConnectionServices& m_services;
    Stream m_stream;
    asio::steady_timer m_timer;
    Step m_afterWait = nullptr;
    beast::flat_buffer m_buffer;
    std::optional<http::request_parser<http::string_body>> m_parser;
    bool m_keepAlive = false;

    // The reply on its way, head first: how many bytes there are, how many have left, how many go next.
    Answer m_answer;
    std::string m_head;
    std::size_t m_total = 0;
    std::size_t m_sent = 0;
    std::size_t m_piece = 0;
    std::string m_filePiece;
    std::optional<LinkShaper::TimePoint> m_pieceGone;
    LoggedRequest m_entry;

    std::string m_rest;
};

} // namespace

void serveHttp(asio::ip::tcp::socket socket, const ConnectionServices& services)
{
    std::make_shared<HttpConnection<PlainStream>>(services, std::move(socket))->start();
}

void serveHttps(asio::ip::tcp::socket socket, asio::ssl::context& tls, const ConnectionServices& services)
{
    std::make_shared<HttpConnection<TlsStream>>(services, std::move(socket), tls)->start();
}

} // namespace documents
