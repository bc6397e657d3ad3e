#include "gateway/ClientConnection.h"

#include "gateway/Forwarder.h"
#include "gateway/GatewayContext.h"
#include "gateway/HandlerOffer.h"
#include "gateway/LocalAnswers.h"
#include "gateway/RequestChecks.h"
#include "gateway/Tunnel.h"
#include "gateway/UpstreamConnector.h"
#include "gateway/Worker.h"

#include <boost/beast/http/error.hpp>

namespace gateway {
namespace {

namespace http = boost::beast::http;
using AnsweredBy = GatewayRequestRecord::AnsweredBy;

constexpr std::size_t readSize = 16 * 1024;

} // namespace

ClientConnection::ClientConnection(Worker& worker, boost::asio::ip::tcp::socket socket)
    : m_worker(worker)
    , m_link(std::make_shared<ClientLink>(std::make_shared<Transport>(std::move(socket))))
    , m_trace(worker.context().observer)
{
}

ClientConnection::~ClientConnection()
{
    if (m_connector)
        m_connector->cancel();
}

const GatewayLimits& ClientConnection::limits() const
{
    return m_worker.context().limits;
}

void ClientConnection::setState(State state, GatewayLimits::Time limit)
{
    m_state = state;
    m_deadline = limit > GatewayLimits::Time::zero() ? m_worker.now() + limit : TimePoint::max();
}

void ClientConnection::start()
{
    m_link->transport->setListener(weak_from_this());
    prepareNext();
    readRequests();
}

void ClientConnection::close()
{
    if (m_state == State::Closed)
        return;
    const bool fromNetwork = m_state == State::Forwarding || m_state == State::Connecting;
    m_trace.finish(fromNetwork ? AnsweredBy::Network : AnsweredBy::Refused, 0, m_writer.bodyWritten());
    m_state = State::Closed;
    m_link->transport->close();
    m_forwarder.reset();
    m_tunnel.reset();
    m_worker.forget(*this);
}

void ClientConnection::expireIfDue(TimePoint now)
{
    if (const std::shared_ptr<Forwarder> forwarder = m_forwarder)
        forwarder->expireIfDue(now);
    else if (const std::shared_ptr<Tunnel> tunnel = m_tunnel)
        tunnel->expireIfDue(now, limits().silence);
    else if (now >= m_deadline)
        expire();
}

void ClientConnection::expire()
{
    if (isIdle())
        endIdle();
    else if (m_state == State::ReadingHead)
        refuseSlowHead();
    else
        close();
}

bool ClientConnection::isIdle() const
{
    return m_state == State::AwaitingInner || (m_state == State::ReadingHead && !m_headStarted);
}

/**
 * Says so to the browser, which may be sending the next request just now: it learns that this one found the
 * connection ended, and sends it on another.
 */
void ClientConnection::endIdle()
{
    if (m_link->transport->isQuiet())
        linger();
    else
        onReadable(*m_link->transport);
}

void ClientConnection::refuseSlowHead()
{
    m_allowed = m_inner.has_value();
    m_link->head.reset(0);
    m_trace.begin(m_link->head, {});
    refuse({408, "the request's head did not end in time", {}, true});
}

void ClientConnection::endPending(const std::string& viewId)
{
    if (m_state != State::AwaitingHandler || m_pendingView != viewId)
        return;
    refuse({502, "the view was closed"});
    readRequests();
}

void ClientConnection::onReadable(Transport& transport)
{
    m_inputLikely = true;
    switch (m_state) {
    case State::ReadingHead:
        readRequests();
        break;
    case State::AwaitingHandler:
    case State::Connecting:
        // Early bytes wait their turn; only a browser that has left is of interest here.
        if (transport.peerGone())
            close();
        break;
    case State::Writing:
        continueWriting();
        readRequests();
        break;
    case State::Draining:
        drain();
        break;
    case State::AwaitingInner:
        beginInner();
        break;
    case State::Handshaking:
        shakeHands();
        break;
    case State::Lingering:
        discardUntilClosed();
        break;
    case State::Forwarding:
    case State::Tunnelling:
    case State::Closed:
        break;
    }
}

void ClientConnection::onWritable(Transport&)
{
    if (m_state == State::Writing) {
        continueWriting();
        readRequests();
    } else if (m_state == State::Handshaking) {
        shakeHands();
    }
}

// Reading requests

void ClientConnection::prepareNext()
{
    m_link->startRequest();
    m_headStarted = false;
    m_discarder.restart();
    setState(State::ReadingHead, limits().idle);
}

void ClientConnection::readRequests()
{
    while (m_state == State::ReadingHead) {
        if (m_link->input.size() > 0 && parseHead())
            handleRequest();
        else if (m_state == State::ReadingHead && !awaitInput())
            return;
    }
}

bool ClientConnection::parseHead()
{
    boost::system::error_code error;
    if (m_link->parseHead(error))
        return true;
    if (error && error != http::error::need_more) {
        m_allowed = m_inner.has_value();
        m_trace.begin(m_link->head, {});
        refuse(refusalOfMalformedHead(error));
    } else if (!m_headStarted) {
        m_headStarted = true;
        setState(State::ReadingHead, limits().requestHead);
    }
    return false;
}

/** Gets more bytes into the buffer. False when there are none now, or the connection has ended. */
bool ClientConnection::awaitInput()
{
    Transport& transport = *m_link->transport;
    if (!m_inputLikely && !transport.hasBufferedInput()) {
        transport.wantRead();
        return false;
    }
    const IoResult result = readInto(m_link->input, transport, readSize);
    m_inputLikely = result.done() && result.bytes == readSize;
    if (result.done())
        return true;
    if (result.blocked())
        transport.want(result);
    else
        close();
    return false;
}

void ClientConnection::handleRequest()
{
    const RequestHead& head = m_link->head;
    const RequestParser& parser = *m_link->parser;
    m_keepAlive = parser.keep_alive();
    m_allowed = m_inner || m_worker.context().credentials.accept(head.proxyAuthorization);
    m_trace.begin(head, m_allowed ? head.viewId : std::string_view());

    if (const std::optional<Refusal> refusal = refusalOf(head, parser, m_allowed)) {
        refuse(*refusal);
        return;
    }
    if (head.verb == http::verb::connect) {
        handleConnect();
        return;
    }
    std::optional<RequestTarget> target = targetOf(head, m_inner);
    if (!target) {
        refuse({400, "the request's target is not an absolute http or https URL"});
        return;
    }
    m_link->target = std::move(*target);
    m_trace.setUrl(m_link->target.url);
    route();
}

// Answering requests

void ClientConnection::route()
{
    const RequestHead& head = m_link->head;
    GatewayContext& context = m_worker.context();
    // Reply paths are the gateway's own: nobody else is asked, and nothing under them leaves the process.
    if (isReplyTarget(m_link->target)) {
        send(oneTimeAnswer(context.views, head, m_link->target, form()));
        return;
    }
    const std::shared_ptr<const ViewRoutes> routes =
        head.viewId.empty() ? nullptr : context.views.routes(head.viewId);
    if (routes && takenByHandler(*routes))
        return;
    std::optional<Answer> file =
        routes ? localFileAnswer(*routes, head, m_link->target, form()) : std::nullopt;
    if (file)
        send(std::move(*file));
    else
        forward();
}

bool ClientConnection::takenByHandler(const ViewRoutes& routes)
{
    const HandlerOffer offer =
        offerToHandlers(routes, m_link->target.url, m_serial, weak_from_this(), m_worker.mailbox());
    if (!offer.taken)
        return false;
    setState(State::AwaitingHandler);
    if (offer.answer) {
        answerFromHandler(*offer.answer);
    } else {
        m_pendingView = m_link->head.viewId;
        m_link->transport->wantRead();
    }
    return true;
}

void ClientConnection::deliver(std::uint64_t serial, const std::optional<QVariantMap>& answer)
{
    if (m_state != State::AwaitingHandler || serial != m_serial)
        return;
    if (answer)
        answerFromHandler(*answer);
    else
        refuse({502, "released without answer"});
    readRequests();
}

void ClientConnection::answerFromHandler(const QVariantMap& answer)
{
    // An empty page or script helps nobody: whoever needs one gets the server's.
    if (m_link->head.needsContent && bodyOfHandlerAnswer(answer).isEmpty())
        forward();
    else
        send(handlerAnswer(answer, m_link->target.path(), form()));
}

void ClientConnection::forward()
{
    setState(State::Forwarding);
    const auto forwarder = std::make_shared<Forwarder>(
        m_worker, m_link, [weak = weak_from_this()](const ForwardOutcome& outcome) {
            if (const auto self = weak.lock())
                self->onForwarded(outcome);
        });
    m_forwarder = forwarder;
    forwarder->start(); // may end within
}

void ClientConnection::onForwarded(const ForwardOutcome& outcome)
{
    const std::shared_ptr<Forwarder> finished = std::move(m_forwarder);
    m_link->transport->setListener(weak_from_this());
    m_inputLikely = true;
    switch (outcome.kind) {
    case ForwardOutcome::Kind::Failed:
        if (outcome.failureStatus == 400)
            refuse({400, outcome.failure, {}, true});
        else
            failOnNetwork(outcome.failureStatus, outcome.failure);
        break;
    case ForwardOutcome::Kind::Switched:
        runTunnel(outcome.upstream, outcome.early, {}, outcome.status);
        return;
    case ForwardOutcome::Kind::Broken:
        m_trace.finish(AnsweredBy::Network, outcome.status, outcome.bytes);
        close();
        return;
    case ForwardOutcome::Kind::Finished:
        m_trace.finish(AnsweredBy::Network, outcome.status, outcome.bytes);
        if (outcome.reusable)
            prepareNext();
        else
            linger();
        break;
    }
    readRequests();
}

AnswerForm ClientConnection::form() const
{
    return answerForm(m_link->head, m_keepAlive);
}

void ClientConnection::refuse(const Refusal& refusal)
{
    m_keepAlive = m_keepAlive && !refusal.endsConnection;
    send(errorAnswer(refusal.status, refusal.text, form(), refusal.headerLines));
}

void ClientConnection::failOnNetwork(int status, const std::string& reason)
{
    Answer answer = errorAnswer(status, reason, form());
    answer.by = AnsweredBy::Network;
    send(std::move(answer));
}

void ClientConnection::send(Answer answer)
{
    setState(State::Writing, m_allowed ? GatewayLimits::Time::zero() : limits().refused);
    m_writer.begin(std::move(answer));
    continueWriting();
}

void ClientConnection::continueWriting()
{
    const IoResult result = m_writer.resume(*m_link->transport);
    if (result.blocked())
        m_link->transport->want(result);
    else if (result.done())
        finishRequest();
    else
        close();
}

void ClientConnection::finishRequest()
{
    m_trace.finish(m_writer.answer().by, m_writer.answer().status, m_writer.bodyWritten());
    m_writer.clear();
    const bool bodyUnread = !m_link->parser->is_done();
    if (!m_keepAlive || (bodyUnread && m_link->head.expectsContinue)) {
        linger();
    } else if (bodyUnread) {
        setState(State::Draining, limits().refused);
        drain();
    } else {
        prepareNext();
    }
}

void ClientConnection::drain()
{
    switch (m_discarder.discardBody(*m_link)) {
    case InputDiscarder::Result::Done:
        prepareNext();
        readRequests();
        break;
    case InputDiscarder::Result::Blocked:
        break;
    case InputDiscarder::Result::TooMuch:
        linger();
        break;
    case InputDiscarder::Result::Ended:
        close();
        break;
    }
}

void ClientConnection::linger()
{
    setState(State::Lingering, limits().farewell);
    m_link->transport->closeWrite();
    discardUntilClosed();
}

void ClientConnection::discardUntilClosed()
{
    if (m_discarder.discardAll(*m_link) != InputDiscarder::Result::Blocked)
        close();
}

} // namespace gateway
