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
using namespace std::chrono_literals;

constexpr auto idleLimit = 120s;
constexpr auto headLimit = 30s;
constexpr auto handshakeLimit = 30s;
constexpr auto drainLimit = 30s;
constexpr auto lingerLimit = 5s;
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

void ClientConnection::setState(State state, std::chrono::seconds limit)
{
    m_state = state;
    m_deadline = limit > 0s ? m_worker.now() + limit : TimePoint::max();
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
    if (now >= m_deadline)
        close();
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
    setState(State::ReadingHead, idleLimit);
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
        m_trace.begin(m_link->head, {});
        refuse(refusalOfMalformedHead(error));
    } else if (!m_headStarted) {
        m_headStarted = true;
        setState(State::ReadingHead, headLimit);
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
    const bool allowed = m_inner || m_worker.context().credentials.accept(head.proxyAuthorization);
    m_trace.begin(head, allowed ? head.viewId : std::string_view());

    if (const std::optional<Refusal> refusal = refusalOf(head, parser, allowed)) {
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
    m_forwarder = std::make_shared<Forwarder>(m_worker, m_link,
                                              [weak = weak_from_this()](const ForwardOutcome& outcome) {
                                                  if (const auto self = weak.lock())
                                                      self->onForwarded(outcome);
                                              });
    m_forwarder->start();
}

void ClientConnection::onForwarded(const ForwardOutcome& outcome)
{
    const std::shared_ptr<Forwarder> finished = std::move(m_forwarder);
    m_link->transport->setListener(weak_from_this());
    m_inputLikely = true;
    switch (outcome.kind) {
    case ForwardOutcome::Kind::Unreachable:
        failOnNetwork(outcome.failure);
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

void ClientConnection::failOnNetwork(const std::string& reason)
{
    Answer answer = errorAnswer(502, reason, form());
    answer.by = AnsweredBy::Network;
    send(std::move(answer));
}

void ClientConnection::send(Answer answer)
{
    setState(State::Writing);
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
        setState(State::Draining, drainLimit);
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
    setState(State::Lingering, lingerLimit);
    m_link->transport->closeWrite();
    discardUntilClosed();
}

void ClientConnection::discardUntilClosed()
{
    if (m_discarder.discardAll(*m_link) != InputDiscarder::Result::Blocked)
        close();
}

// CONNECT

void ClientConnection::handleConnect()
{
    const std::optional<HostPort> endpoint = parseAuthority(m_link->head.target, 0);
    if (m_inner || !endpoint)
        refuse({400, "CONNECT needs a target of the form host:port, outside of any other tunnel"});
    else if (m_worker.context().isIntercepted(*endpoint))
        openIntercepted(*endpoint);
    else
        openTunnel(*endpoint);
}

void ClientConnection::openIntercepted(HostPort endpoint)
{
    constexpr std::string_view granted = "HTTP/1.1 200 Connection established\r\n\r\n";
    if (m_link->input.size() > 0) {
        refuse({400, "bytes came before the tunnel was granted", {}, true});
        return;
    }
    // The tunnel itself is no request of the page; those inside it are recorded.
    m_trace.discard();
    m_inner = Origin{Scheme::Http, std::move(endpoint)};
    // Nothing else is on its way to the browser, so this little always fits.
    if (m_link->transport->write(granted.data(), granted.size()).bytes != granted.size()) {
        close();
        return;
    }
    setState(State::AwaitingInner, idleLimit);
    m_link->transport->wantRead();
}

void ClientConnection::beginInner()
{
    constexpr int tlsHandshakeRecord = 0x16;
    const int first = m_link->transport->peekByte();
    if (first < 0) {
        if (m_link->transport->peerGone())
            close();
        else
            m_link->transport->wantRead();
        return;
    }
    if (first != tlsHandshakeRecord) { // "ws:" and "http:" inside a tunnel
        prepareNext();
        readRequests();
        return;
    }
    SslPtr ssl = m_worker.context().tls.serverSession();
    if (!ssl) {
        close();
        return;
    }
    m_inner->scheme = Scheme::Https;
    m_link->transport->startTls(std::move(ssl));
    setState(State::Handshaking, handshakeLimit);
    shakeHands();
}

void ClientConnection::shakeHands()
{
    const IoResult result = m_link->transport->handshake();
    if (result.blocked()) {
        m_link->transport->want(result);
    } else if (result.done()) {
        m_inputLikely = true;
        prepareNext();
        readRequests();
    } else {
        close();
    }
}

void ClientConnection::openTunnel(const HostPort& endpoint)
{
    setState(State::Connecting);
    m_trace.setUrl("https://" + Origin{Scheme::Https, endpoint}.authority());
    m_connector = std::make_shared<UpstreamConnector>(
        m_worker.io(), m_worker.context(), Origin{Scheme::Http, endpoint},
        [weak = weak_from_this(), name = endpoint.text()](std::shared_ptr<Transport> server,
                                                          const std::string& failure) {
            const std::shared_ptr<ClientConnection> self = weak.lock();
            if (!self || self->m_state != State::Connecting)
                return;
            if (server) {
                self->runTunnel(std::move(server), {}, "HTTP/1.1 200 Connection established\r\n\r\n", 200);
                return;
            }
            self->failOnNetwork("Cannot connect to " + name + ": " + failure);
            self->readRequests();
        });
    m_connector->start();
    m_link->transport->wantRead();
}

void ClientConnection::runTunnel(std::shared_ptr<Transport> server, std::string early, std::string toBrowser,
                                 int status)
{
    setState(State::Tunnelling);
    boost::beast::flat_buffer& input = m_link->input;
    std::string toServer(static_cast<const char*>(input.data().data()), input.size());
    input.consume(input.size());
    m_tunnel = std::make_shared<Tunnel>(m_link->transport, std::move(server),
                                        [weak = weak_from_this(), status](qint64 bytes) {
                                            if (const auto self = weak.lock()) {
                                                self->m_trace.finish(AnsweredBy::Network, status, bytes);
                                                self->close();
                                            }
                                        });
    m_tunnel->start(std::move(toServer), std::move(toBrowser) + early);
}

} // namespace gateway
