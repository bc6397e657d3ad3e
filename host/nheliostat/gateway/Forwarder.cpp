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

// A server may just be ending a connection that was idle for longer than this.
constexpr auto freshFor = std::chrono::seconds(1);

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
    ClientLink& link = *m_link;
    m_browserKeepsAlive = link.head.version == 11 && link.parser->keep_alive();
    m_request.emplace(link);
    m_movedAt = m_worker.now();
    link.transport->setListener(weak_from_this());
    link.transport->wantRead(); // a browser that leaves is noticed while the server is slow
    acquire(!m_request->asksSwitch());
}

void Forwarder::expireIfDue(TimePoint now)
{
    if (!m_done || !m_upstream)
        return; // connecting has a limit of its own
    const GatewayLimits& limits = m_worker.context().limits;
    if (m_headSince && now - *m_headSince >= limits.answerHead) {
        upstreamFailed("the head of the server's answer did not end in time", 504);
        return;
    }
    const std::size_t moved = m_request->moved() + m_received;
    if (moved != m_movedBefore || !m_toBrowser.empty()) { // a browser may take its time
        m_movedBefore = moved;
        m_movedAt = now;
    } else if (now - m_movedAt >= limits.silence) {
        upstreamFailed("nothing moved for too long", 504);
    }
}

void Forwarder::acquire(bool mayReuse)
{
    const Origin& origin = m_link->target.origin;
    // What cannot be sent twice does not risk a connection that its server may be ending.
    const auto since = m_request->canRepeat() ? TimePoint::min() : m_worker.now() - freshFor;
    std::shared_ptr<Transport> idle = mayReuse ? m_worker.pool().take(origin, since) : nullptr;
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
    m_scanner.restart();
    m_headSince.reset();
    m_request->restart();
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
    if (!m_done)
        return;
    const bool watchingBrowser =
        &transport == m_link->transport.get() && (m_request->isRead() || !m_upstream);
    if (watchingBrowser && transport.peerGone())
        finish({Kind::Broken, m_status, m_bodyBytes});
    else
        pump();
}

void Forwarder::pump()
{
    if (!m_done || !m_upstream || !pumpRequest())
        return;
    for (int turn = 0; m_done && m_upstream && pumpResponse() == Step::Progress; ++turn) {
        if (turn >= buffersPerTurn && !m_upstream->hasBufferedInput() && m_toBrowser.empty() &&
            m_input.size() == 0) {
            m_upstream->wantRead();
            return;
        }
    }
}

/** False when that has ended everything. */
bool Forwarder::pumpRequest()
{
    switch (m_request->pump(*m_upstream)) {
    case RequestSender::Result::Waiting:
        return true;
    case RequestSender::Result::BrowserLeft:
        finish({Kind::Broken, m_status, m_bodyBytes});
        return false;
    case RequestSender::Result::Malformed:
        fail(400, "the request's body is not framed as HTTP asks, or a chunk's head is longer than 64 KiB");
        return false;
    }
    return true;
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
        m_received += result.bytes;
        m_request->forget();
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
    if (!hadHead) {
        const std::size_t size =
            m_scanner.headSize({static_cast<const char*>(m_input.data().data()), m_input.size()});
        if (size == 0)
            return headIncomplete();
        m_head.reset(size);
        m_scanner.restart();
        m_headSince.reset();
    }
    boost::system::error_code error;
    const std::size_t consumed =
        hadHead ? parseBody(*m_parser, m_input.data(), error) : m_parser->put(m_input.data(), error);
    m_input.consume(consumed);
    if (error == http::error::need_more && hadHead) {
        if (consumed > 0)
            return Step::Progress;
        if (m_input.size() <= GatewayLimits::chunkHeadBytes)
            return Step::NeedsInput;
        upstreamFailed("a chunk's head, or the trailer, is longer than 64 KiB");
        return Step::Ended;
    }
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

Forwarder::Step Forwarder::headIncomplete()
{
    if (m_input.size() > GatewayLimits::answerHeadBytes) {
        upstreamFailed("the head of the server's answer is longer than 256 KiB");
        return Step::Ended;
    }
    if (!m_headSince)
        m_headSince = m_worker.now();
    return Step::NeedsInput;
}

void Forwarder::takeHead()
{
    if (m_head.status / 100 == 1) {
        m_switched = m_head.status == 101;
        if (m_switched && !m_request->asksSwitch()) {
            upstreamFailed("the server switched protocols unasked");
            return;
        }
        if (++m_interimAnswers > GatewayLimits::interimAnswers) {
            upstreamFailed("the server goes on announcing its answer");
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

void Forwarder::upstreamFailed(const std::string& reason, int status)
{
    m_upstream.reset();
    if (m_upstreamReused && m_received == 0 && m_request->canRepeat() && status == 502) {
        // The server had closed the idle connection just then.
        acquire(false);
        return;
    }
    fail(status, "Cannot fetch from " + m_link->target.origin.endpoint.text() + ": " + reason);
}

void Forwarder::fail(int status, std::string text)
{
    ForwardOutcome outcome{m_status == 0 ? Kind::Failed : Kind::Broken, m_status, m_bodyBytes};
    outcome.failureStatus = status;
    outcome.failure = std::move(text);
    finish(std::move(outcome));
}

void Forwarder::finishResponse()
{
    ForwardOutcome outcome{m_switched ? Kind::Switched : Kind::Finished, m_status, m_bodyBytes};
    outcome.reusable =
        m_browserKeepsAlive && m_request->isRead() && m_responseFraming != BodyFraming::UntilClose;
    if (m_switched) {
        outcome.upstream = m_upstream;
        outcome.early = std::string(static_cast<const char*>(m_input.data().data()), m_input.size());
    } else if (m_request->isRead() && m_parser->keep_alive() && m_input.size() == 0) {
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
    m_request.reset();
    if (done)
        done(outcome);
}

} // namespace gateway
