#include "gateway/ClientConnection.h"

#include "gateway/GatewayContext.h"
#include "gateway/RequestChecks.h"
#include "gateway/Tunnel.h"
#include "gateway/UpstreamConnector.h"
#include "gateway/Worker.h"

// CONNECT: tunnels that are opened up, and those that are not.

namespace gateway {

using AnsweredBy = GatewayRequestRecord::AnsweredBy;

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
    setState(State::AwaitingInner, limits().idle);
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
    setState(State::Handshaking, limits().handshake);
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
            self->failOnNetwork(502, "Cannot connect to " + name + ": " + failure);
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
