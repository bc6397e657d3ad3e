#include "http/HttpConnection.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

#include <boost/asio/post.hpp>
#include <boost/asio/ssl.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/ssl.hpp>

#include "http/MessageText.h"
#include "http/OutgoingReply.h"
#include "http/RequestReader.h"

namespace documents {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
using boost::system::error_code;

constexpr std::size_t drainSize = 65536;
constexpr std::chrono::seconds farewellLimit(2);

using PlainStream = beast::tcp_stream;
using TlsStream = beast::ssl_stream<beast::tcp_stream>;

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
        , m_reader(m_stream, services, [this](ReceivedRequest&& received) { onRequest(std::move(received)); })
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
            readRequest();
    }

    void onShaken(error_code error)
    {
        if (!error)
            readRequest();
    }

    void readRequest() { m_reader.read(this->shared_from_this()); }

    void onRequest(ReceivedRequest&& received)
    {
        m_received = std::move(received);
        if (m_received.answer) {
            m_answer = std::move(*m_received.answer);
            return work();
        }
        if (!m_received.isCut)
            return close();
        startEntry(0);
        breakOff();
    }

    void work()
    {
        if (m_answer.work) {
            auto reply = m_answer.work();
            if (!reply)
                return asio::post(m_stream.get_executor(), bound(&HttpConnection::work));
            m_answer.reply = std::move(*reply);
        }
        send();
    }

    void send()
    {
        HttpReply& reply = m_answer.reply;
        startEntry(reply.status);
        std::string head = headText(reply, m_received.version, m_received.keepAlive);
        const bool isBare = m_received.request.method == "HEAD" || !hasBody(reply.status);
        const qint64 bodyLimit = isBare ? 0 : m_answer.cutAfter.value_or(std::numeric_limits<qint64>::max());
        m_outgoing.emplace(std::move(head), std::move(reply), bodyLimit);
        m_pieceGone.reset();
        const auto lineDelay =
            m_answer.shaped ? m_services.shaper.requestDelay() : std::chrono::milliseconds(0);
        wait(lineDelay + m_answer.delay, m_answer.reset ? &HttpConnection::reset : &HttpConnection::sendNext);
    }

    void sendNext()
    {
        if (m_outgoing->isSent())
            return finish();
        const std::size_t available = m_outgoing->available();
        if (!m_answer.shaped) {
            m_piece = available;
            return writePiece();
        }
        m_piece = m_services.shaper.pieceSize(available);
        const auto now = std::chrono::steady_clock::now();
        m_pieceGone = m_services.shaper.reserve(m_piece, now, m_pieceGone);
        wait(*m_pieceGone - now, &HttpConnection::writePiece);
    }

    void writePiece()
    {
        const auto buffers = m_outgoing->piece(m_piece);
        if (!buffers)
            return breakOff();
        transport().expires_after(silenceLimit);
        asio::async_write(m_stream, *buffers, bound(&HttpConnection::onPieceWritten));
    }

    void onPieceWritten(error_code error, std::size_t bytes)
    {
        m_outgoing->advance(bytes);
        if (!error)
            return sendNext();
        breakOff();
    }

    void breakOff()
    {
        record();
        close();
    }

    void startEntry(int status)
    {
        const HttpRequest& request = m_received.request;
        m_entry = {m_services.clock(),
                   request.method,
                   request.target,
                   status,
                   0,
                   request.headers,
                   loggedBody(request.method, request.body)};
    }

    void record()
    {
        m_entry.bytes = m_outgoing ? static_cast<qint64>(m_outgoing->sent()) : 0;
        m_services.log.record(m_entry);
    }

    void finish()
    {
        record();
        const bool isCut = m_answer.cutAfter.has_value();
        m_outgoing.reset();
        m_answer = {};
        if (isCut)
            return close();
        if (m_received.keepAlive)
            return readRequest();
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
    RequestReader<Stream> m_reader;

    ReceivedRequest m_received;
    Answer m_answer;
    std::optional<OutgoingReply> m_outgoing;
    std::size_t m_piece = 0;
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
