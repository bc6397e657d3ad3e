#include "gateway/RequestSender.h"

#include "gateway/GatewayLimits.h"

#include <boost/beast/http/error.hpp>

#include <algorithm>

namespace gateway {
namespace {

namespace http = boost::beast::http;

constexpr std::size_t bufferSize = 64 * 1024;
constexpr std::size_t mostRepeated = 64 * 1024;

bool isIdempotent(http::verb verb)
{
    return verb == http::verb::get || verb == http::verb::head || verb == http::verb::put ||
           verb == http::verb::delete_ || verb == http::verb::options || verb == http::verb::trace;
}

bool asksForWebSocket(const ClientLink& link)
{
    return link.parser->upgrade() &&
           std::any_of(link.head.fields.begin(), link.head.fields.end(), [](const HeaderField& field) {
               return field.id == http::field::upgrade && equalsIgnoringCase(field.value, "websocket");
           });
}

BodyFraming framingOf(const RequestParser& parser)
{
    if (parser.is_done())
        return BodyFraming::None;
    return parser.chunked() ? BodyFraming::Chunked : BodyFraming::Length;
}

} // namespace

RequestSender::RequestSender(ClientLink& link)
    : m_link(link)
    , m_framing(framingOf(*link.parser))
    , m_asksSwitch(asksForWebSocket(link))
    , m_canRepeat(isIdempotent(link.head.verb) && !m_asksSwitch)
    , m_isRead(m_framing == BodyFraming::None)
    , m_bytes(upstreamRequestHead(link.head, link.target, m_framing, m_asksSwitch))
{
    m_link.parser->collectBody(&m_bodyPiece);
}

RequestSender::~RequestSender()
{
    m_link.parser->collectBody(nullptr);
}

void RequestSender::restart()
{
    m_written = 0;
    m_isBroken = false;
}

void RequestSender::forget()
{
    m_canRepeat = false;
}

RequestSender::Result RequestSender::pump(Transport& server)
{
    while (!m_isBroken) {
        if (m_written < m_bytes.size()) {
            const IoResult result = server.write(m_bytes.data() + m_written, m_bytes.size() - m_written);
            m_written += result.bytes;
            m_moved += result.bytes;
            server.want(result);
            // A server that refuses a body closes early; what it has to say is read next.
            m_isBroken = !result.done() && !result.blocked();
            if (!result.done())
                break;
            continue;
        }
        m_canRepeat = m_canRepeat && m_bytes.size() <= mostRepeated;
        if (!m_canRepeat) {
            m_bytes.clear();
            m_written = 0;
        }
        if (m_isRead)
            break;
        switch (readBody()) {
        case Step::Progress:
            break;
        case Step::Waiting:
            return Result::Waiting;
        case Step::BrowserLeft:
            return Result::BrowserLeft;
        case Step::Malformed:
            return Result::Malformed;
        }
    }
    return Result::Waiting;
}

RequestSender::Step RequestSender::readBody()
{
    if (m_link.input.size() > 0) {
        boost::system::error_code error;
        const bool moved = parseBody(error);
        if (error && error != http::error::need_more)
            return Step::Malformed;
        if (moved || m_isRead || !error)
            return Step::Progress;
        if (m_link.input.size() > GatewayLimits::chunkHeadBytes)
            return Step::Malformed;
    }
    const IoResult result = readInto(m_link.input, *m_link.transport, bufferSize);
    m_moved += result.bytes;
    if (result.done())
        return Step::Progress;
    if (!result.blocked())
        return Step::BrowserLeft;
    m_link.transport->want(result);
    return Step::Waiting;
}

/** True when something was added for the server. */
bool RequestSender::parseBody(boost::system::error_code& error)
{
    m_link.input.consume(gateway::parseBody(*m_link.parser, m_link.input.data(), error));
    const bool moved = !m_bodyPiece.empty();
    if (m_framing == BodyFraming::Chunked)
        appendChunk(m_bytes, m_bodyPiece);
    else
        m_bytes += m_bodyPiece;
    m_bodyPiece.clear();
    m_isRead = m_link.parser->is_done();
    if (m_isRead && m_framing == BodyFraming::Chunked)
        m_bytes += lastChunk;
    if (m_isRead)
        m_link.transport->wantRead(); // a browser that leaves is noticed while the server is slow
    return moved;
}

} // namespace gateway
