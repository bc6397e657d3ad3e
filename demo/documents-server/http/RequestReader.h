#pragma once

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <boost/asio/buffer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>

#include "http/BodySink.h"
#include "http/HttpConnection.h"
#include "http/HttpMessage.h"
#include "http/MessageText.h"

namespace documents {

/** A connection on which nothing moves for so long is closed. */
constexpr std::chrono::seconds silenceLimit(60);

/** A request that was read as far as it is going to be. */
struct ReceivedRequest
{
    HttpRequest request;
    unsigned version = 11;
    bool keepAlive = false;
    std::optional<Answer> answer; ///< nothing: the connection is to be closed
    bool isCut = false;           ///< closed because it was told to break off here
};

/** Reads the requests of one connection, one at a time, and obtains their answers. */
template <typename Stream>
class RequestReader
{
public:
    using Done = std::function<void(ReceivedRequest&&)>;

    /** All are kept by reference. */
    RequestReader(Stream& stream, const ConnectionServices& services, Done done)
        : m_stream(stream)
        , m_services(services)
        , m_done(std::move(done))
    {
    }

    /** The owner is kept alive until the request has been handed over. */
    void read(const std::shared_ptr<void>& owner)
    {
        m_owner = owner;
        m_received = {};
        m_reception = {};
        m_bodyBytes = 0;
        m_parser.emplace();
        m_parser->header_limit(headLimit);
        m_parser->body_limit(std::numeric_limits<std::uint64_t>::max()); // the reception has its own
        expectNews();
        m_headBytes = 0;
        readHead();
    }

private:
    static constexpr std::uint32_t headLimit = 32 * 1024;
    static constexpr std::uint64_t discardLimit = 1024 * 1024;
    static constexpr std::size_t headReadSize = 16 * 1024;
    static constexpr std::size_t readSize = 64 * 1024;
    /** For what cannot be parsed yet: a head, a chunk's head with its extensions, a trailer. */
    static constexpr std::size_t bufferLimit = 128 * 1024;
    static constexpr std::size_t bodyPieceSize = 256 * 1024;

    template <typename Step>
    auto bound(Step step)
    {
        return [this, owner = m_owner.lock(), step](boost::system::error_code error, std::size_t) {
            (this->*step)(error);
        };
    }

    void readHead()
    {
        if (m_buffer.size() > 0) {
            boost::system::error_code error;
            const std::size_t parsed = m_parser->put(m_buffer.data(), error);
            m_buffer.consume(parsed);
            m_headBytes += parsed;
            // The parser bounds what it is given at once, and not the sum of the fields that it took.
            if (m_headBytes > headLimit)
                error = boost::beast::http::error::header_limit;
            if (error != boost::beast::http::error::need_more)
                return onHead(error);
        }
        m_stream.async_read_some(
            m_buffer.prepare(headReadSize),
            [this, owner = m_owner.lock()](boost::system::error_code error, std::size_t bytes) {
                m_buffer.commit(bytes);
                error ? onHead(error) : readHead();
            });
    }

    void expectNews() { boost::beast::get_lowest_layer(m_stream).expires_after(silenceLimit); }

    void onHead(boost::system::error_code error)
    {
        const auto& message = m_parser->get();
        m_received.request = toRequest(message);
        if (error)
            return onBroken(error);
        m_received.keepAlive = message.keep_alive();
        m_received.version = message.version();
        m_reception = m_services.receive(m_received.request);
        const std::uint64_t announced = m_parser->content_length().value_or(0);
        if (isTooLarge(announced))
            return refuse({tooLargeReply(m_received.request.target, m_reception.limit)});
        const bool asksFirst =
            boost::beast::iequals(message[boost::beast::http::field::expect], "100-continue");
        if (m_reception.refusal) {
            // A small body that is on its way is cheaper to read than a new connection.
            const bool isSmall = announced <= discardLimit && !m_parser->chunked();
            return isSmall && !asksFirst ? readBody() : refuse(std::move(*m_reception.refusal));
        }
        if (!asksFirst)
            return readBody();
        m_continue = "HTTP/1.1 100 Continue\r\n\r\n";
        boost::asio::async_write(m_stream, boost::asio::buffer(m_continue),
                                 bound(&RequestReader::onContinueSent));
    }

    bool isTooLarge(std::uint64_t bytes) const { return !m_reception.refusal && bytes > m_reception.limit; }

    void onContinueSent(boost::system::error_code error)
    {
        if (!error)
            readBody();
    }

    void readBody()
    {
        if (m_reception.cutAt && m_bodyBytes >= *m_reception.cutAt) {
            m_received.isCut = true;
            return handOver();
        }
        if (m_parser->is_done())
            return onWhole();
        m_parser->eager(true);
        m_buffer.reserve(readSize); // a read fetches no more than the buffer has room for
        m_bodyPiece.resize(bodyPieceSize);
        const std::uint64_t wanted = m_reception.cutAt ? *m_reception.cutAt - m_bodyBytes : bodyPieceSize;
        m_wanted = static_cast<std::size_t>(std::min<std::uint64_t>(wanted, bodyPieceSize));
        auto& body = m_parser->get().body();
        body.data = m_bodyPiece.data();
        body.size = m_wanted;
        expectNews();
        boost::beast::http::async_read_some(m_stream, m_buffer, *m_parser,
                                            bound(&RequestReader::onBodyPiece));
    }

    void onBodyPiece(boost::system::error_code error)
    {
        const std::size_t size = m_wanted - m_parser->get().body().size;
        m_bodyBytes += size;
        if (isTooLarge(m_bodyBytes))
            return refuse({tooLargeReply(m_received.request.target, m_reception.limit)});
        if (size > 0 && !takeBody(size))
            return refuse(m_reception.sink->finish());
        if (error && error != boost::beast::http::error::need_buffer)
            return onBroken(error);
        readBody();
    }

    bool takeBody(std::size_t size)
    {
        if (m_reception.sink)
            return m_reception.sink->take(m_bodyPiece.data(), size);
        if (!m_reception.refusal)
            m_received.request.body.append(m_bodyPiece.data(), static_cast<int>(size));
        return true;
    }

    void onWhole()
    {
        if (m_reception.refusal)
            m_received.answer = std::move(*m_reception.refusal);
        else if (m_reception.sink)
            m_received.answer = m_reception.sink->finish();
        else
            m_received.answer = m_services.answer(m_received.request);
        handOver();
    }

    void onBroken(boost::system::error_code error)
    {
        const auto reply = replyToBrokenRequest(error, m_received.request.target);
        if (!reply)
            return handOver();
        m_received.version = 11;
        refuse({*reply});
    }

    /** Answers without regard to what is still to come of the request. */
    void refuse(Answer&& answer)
    {
        m_received.keepAlive = m_received.keepAlive && m_parser->is_done();
        m_received.answer = std::move(answer);
        handOver();
    }

    void handOver()
    {
        m_reception = {};
        m_done(std::move(m_received));
    }

    Stream& m_stream;
    const ConnectionServices& m_services;
    Done m_done;
    std::weak_ptr<void> m_owner;
    boost::beast::flat_buffer m_buffer{bufferLimit};
    std::size_t m_headBytes = 0;
    std::optional<boost::beast::http::request_parser<boost::beast::http::buffer_body>> m_parser;
    ReceivedRequest m_received;
    Reception m_reception;
    std::uint64_t m_bodyBytes = 0; ///< that have arrived
    std::size_t m_wanted = 0;      ///< bytes that the pending read may bring
    std::vector<char> m_bodyPiece;
    std::string m_continue;
};

} // namespace documents
