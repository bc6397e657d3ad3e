#include "gateway/Forwarder.h"

#include "gateway/GatewayContext.h"
#include "gateway/UpstreamConnector.h"
#include "gateway/UpstreamPool.h"
#include "gateway/Worker.h"

#include <boost/beast/http/error.hpp>

#include <algorithm>

namespace gateway {
namespace {

namespace http = boost::beast::http;
using Kind = ForwardOutcome::Kind;

constexpr std::size_t bufferSize = 64 * 1024;
// After so many buffers other connections of the thread get their turn.
constexpr int buffersPerTurn = 16;

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

BodyFraming requestFraming(const RequestParser& parser)
{
    if (parser.is_done())
        return BodyFraming::None;
    return parser.chunked() ? BodyFraming::Chunked : BodyFraming::Length;
}

} // namespace

Forwarder::Forwarder(Worker& worker, std::shared_ptr<ClientLink> link, Done done)
    : m_worker(worker)
    , m_link(std::move(link))
    , m_done(std::move(done))
{
}

Forwarder::~Forwarder()
{
    if (m_connector)
        m_connector->cancel();
}

void Forwarder::start()
{
    const ClientLink& link = *m_link;
    m_asksSwitch = asksForWebSocket(link);
    m_requestFraming = requestFraming(*link.parser);
    m_requestDone = m_requestFraming == BodyFraming::None;
    m_isRepeatable = m_requestDone && isIdempotent(link.head.verb);
    m_browserKeepsAlive = link.head.version == 11 && link.parser->keep_alive();
    m_requestHead = upstreamRequestHead(link.head, link.target, m_requestFraming, m_asksSwitch);
    m_link->parser->collectBody(&m_bodyPiece);
    link.transport->setListener(weak_from_this());
    link.transport->wantRead(); // a browser that leaves is noticed while the server is slow
    acquire(!m_asksSwitch);
}

void Forwarder::acquire(bool mayReuse)
{
    const Origin& origin = m_link->target.origin;
    std::shared_ptr<Transport> idle = mayReuse ? m_worker.pool().take(origin) : nullptr;
    m_upstreamReused = idle != nullptr;
    if (idle) {
        begin(std::move(idle));
        return;
    }
    m_connector = std::make_shared<UpstreamConnector>(
        m_worker.io(), m_worker.context(), origin,
        [weak = weak_from_this()](std::shared_ptr<Transport> transport, const std::string& failure) {
            const std::shared_ptr<Forwarder> self = weak.lock();
            if (self && transport)
                self->begin(std::move(transport));
            else if (self)
                self->upstreamFailed(failure);
        });
    m_connector->start();
}

void Forwarder::begin(std::shared_ptr<Transport> upstream)
{
    m_connector.reset();
    m_upstream = std::move(upstream);
    m_upstream->setListener(weak_from_this());
    m_input.consume(m_input.size());
    m_toServer = m_requestHead;
    m_toServerWritten = 0;
    m_parser.emplace(m_head, m_responsePiece, m_link->head.verb == http::verb::head);
    pump();
}

void Forwarder::onReadable(Transport& transport)
{
    resume(transport);
}

void Forwarder::onWritable(Transport& transport)
{
    resume(transport);
}

void Forwarder::resume(Transport& transport)
{
    const bool watchingBrowser = &transport == m_link->transport.get() && (m_requestDone || !m_upstream);
    if (m_done && watchingBrowser && transport.peerGone())
        finish({Kind::Broken, m_status, m_bodyBytes});
    else
        pump();
}

void Forwarder::pump()
{
    if (!m_done || !m_upstream)
        return;
    pumpRequest();
    for (int turn = 0; m_done && m_upstream && pumpResponse() == Step::Progress; ++turn) {
        if (turn >= buffersPerTurn && !m_upstream->hasBufferedInput() && m_toBrowser.empty() &&
            m_input.size() == 0) {
            m_upstream->wantRead();
            return;
        }
    }
}

void Forwarder::pumpRequest()
{
    while (m_done && m_upstream && !m_requestBroken) {
        if (m_toServerWritten < m_toServer.size()) {
            const IoResult result = m_upstream->write(m_toServer.data() + m_toServerWritten,
                                                      m_toServer.size() - m_toServerWritten);
            m_toServerWritten += result.bytes;
            m_upstream->want(result);
            // A server that refuses a body closes early; what it has to say is read next.
            m_requestBroken = !result.done() && !result.blocked();
            if (!result.done())
                return;
            continue;
        }
        m_toServer.clear();
        m_toServerWritten = 0;
        if (m_requestDone || readRequestBody() != Step::Progress)
            return;
    }
}

Forwarder::Step Forwarder::readRequestBody()
{
    ClientLink& link = *m_link;
    if (link.input.size() > 0) {
        boost::system::error_code error;
        link.input.consume(link.parser->put(link.input.data(), error));
        if (error && error != http::error::need_more) {
            finish({Kind::Broken, m_status, m_bodyBytes});
            return Step::Ended;
        }
        if (m_requestFraming == BodyFraming::Chunked)
            appendChunk(m_toServer, m_bodyPiece);
        else
            m_toServer += m_bodyPiece;
        const bool moved = !m_bodyPiece.empty();
        m_bodyPiece.clear();
        m_requestDone = link.parser->is_done();
        if (m_requestDone && m_requestFraming == BodyFraming::Chunked)
            m_toServer += lastChunk;
        if (m_requestDone)
            link.transport->wantRead();
        if (moved || m_requestDone || !error)
            return Step::Progress;
    }
    const IoResult result = readInto(link.input, *link.transport, bufferSize);
    if (result.done())
        return Step::Progress;
    if (!result.blocked()) {
        finish({Kind::Broken, m_status, m_bodyBytes});
        return Step::Ended;
    }
    link.transport->want(result);
    return Step::Blocked;
}

Forwarder::Step Forwarder::pumpResponse()
{
    if (m_toBrowserWritten < m_toBrowser.size()) {
        Transport& browser = *m_link->transport;
        const IoResult result =
            browser.write(m_toBrowser.data() + m_toBrowserWritten, m_toBrowser.size() - m_toBrowserWritten);
        m_toBrowserWritten += result.bytes;
        browser.want(result);
        if (result.done())
            return Step::Progress;
        if (!result.blocked())
            finish({Kind::Broken, m_status, m_bodyBytes});
        return Step::Blocked;
    }
    m_toBrowser.clear();
    m_toBrowserWritten = 0;
    if (m_responseDone) {
        finishResponse();
        return Step::Ended;
    }
    const Step parsed = m_input.size() > 0 ? parseResponse() : Step::NeedsInput;
    return parsed == Step::NeedsInput ? readResponse() : parsed;
}

Forwarder::Step Forwarder::readResponse()
{
    const IoResult result = readInto(m_input, *m_upstream, bufferSize);
    if (result.done()) {
        m_heard = true;
        return Step::Progress;
    }
    if (!result.blocked())
        return endOfInput(result);
    m_upstream->want(result);
    return Step::Blocked;
}

Forwarder::Step Forwarder::endOfInput(const IoResult& result)
{
    boost::system::error_code error;
    if (result.status == IoResult::Status::Closed && m_parser->got_some()) {
        m_parser->put_eof(error);
        if (!error && m_parser->is_done()) {
            takeBody();
            return Step::Progress;
        }
    }
    upstreamFailed(result.status == IoResult::Status::Failed ? m_upstream->lastError()
                                                             : "the server closed the connection");
    return Step::Ended;
}

Forwarder::Step Forwarder::parseResponse()
{
    const bool hadHead = m_parser->is_header_done();
    if (!hadHead)
        m_head.reset(m_input.size());
    boost::system::error_code error;
    const std::size_t consumed = m_parser->put(m_input.data(), error);
    m_input.consume(consumed);
    if (error == http::error::need_more)
        return consumed > 0 ? Step::Progress : Step::NeedsInput;
    if (error) {
        upstreamFailed("the server's answer is not HTTP: " + error.message());
        return Step::Ended;
    }
    if (!hadHead && m_parser->is_header_done())
        takeHead();
    else
        takeBody();
    return m_done ? Step::Progress : Step::Ended;
}

void Forwarder::takeHead()
{
    if (m_head.status / 100 == 1) {
        m_switched = m_head.status == 101;
        if (m_switched && !m_asksSwitch) {
            upstreamFailed("the server switched protocols unasked");
            return;
        }
        if (m_link->head.version == 11)
            m_toBrowser += clientResponseHead(m_head, BodyFraming::None, false, m_switched);
        if (m_switched) {
            m_status = 101;
            m_responseDone = true;
        } else {
            m_parser.emplace(m_head, m_responsePiece, m_link->head.verb == http::verb::head);
        }
        return;
    }

    m_status = m_head.status;
    if (m_parser->is_done())
        m_responseFraming = BodyFraming::None;
    else if (!m_parser->chunked() && m_parser->content_length())
        m_responseFraming = BodyFraming::Length;
    else
        m_responseFraming = m_link->head.version == 11 ? BodyFraming::Chunked : BodyFraming::UntilClose;
    const bool close = !m_browserKeepsAlive || m_responseFraming == BodyFraming::UntilClose;
    m_toBrowser += clientResponseHead(m_head, m_responseFraming, close, false);
    m_responseDone = m_parser->is_done();
}

void Forwarder::takeBody()
{
    m_bodyBytes += static_cast<qint64>(m_responsePiece.size());
    if (m_responseFraming == BodyFraming::Chunked)
        appendChunk(m_toBrowser, m_responsePiece);
    else
        m_toBrowser += m_responsePiece;
    m_responsePiece.clear();
    m_responseDone = m_parser->is_done();
    if (m_responseDone && m_responseFraming == BodyFraming::Chunked)
        m_toBrowser += lastChunk;
}

void Forwarder::upstreamFailed(const std::string& reason)
{
    m_upstream.reset();
    if (m_status != 0) {
        finish({Kind::Broken, m_status, m_bodyBytes});
    } else if (m_upstreamReused && !m_heard && m_isRepeatable) {
        // The server had closed the idle connection just then.
        m_requestBroken = false;
        acquire(false);
    } else {
        ForwardOutcome outcome{Kind::Unreachable};
        outcome.failure = "Cannot fetch from " + m_link->target.origin.endpoint.text() + ": " + reason;
        finish(std::move(outcome));
    }
}

void Forwarder::finishResponse()
{
    ForwardOutcome outcome{m_switched ? Kind::Switched : Kind::Finished, m_status, m_bodyBytes};
    outcome.reusable = m_browserKeepsAlive && m_requestDone && m_responseFraming != BodyFraming::UntilClose;
    if (m_switched) {
        outcome.upstream = m_upstream;
        outcome.early = std::string(static_cast<const char*>(m_input.data().data()), m_input.size());
    } else if (m_requestDone && m_parser->keep_alive() && m_input.size() == 0) {
        m_worker.pool().give(m_link->target.origin, m_upstream, m_worker.now());
    }
    finish(std::move(outcome));
}

void Forwarder::finish(ForwardOutcome outcome)
{
    const Done done = std::move(m_done);
    m_done = nullptr;
    m_upstream.reset();
    if (m_connector)
        m_connector->cancel();
    m_link->parser->collectBody(nullptr);
    if (done)
        done(outcome);
}

} // namespace gateway
