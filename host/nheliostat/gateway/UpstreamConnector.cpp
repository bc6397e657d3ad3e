#include "gateway/UpstreamConnector.h"

#include "base/StreamSockets.h"
#include "gateway/GatewayContext.h"

#include <boost/asio/post.hpp>

#include <chrono>

namespace gateway {

UpstreamConnector::UpstreamConnector(boost::asio::io_context& io, const GatewayContext& context,
                                     Origin origin, Done done)
    : m_context(context)
    , m_origin(std::move(origin))
    , m_done(std::move(done))
    , m_resolver(io)
    , m_socket(io)
    , m_timer(io)
{
}

// The operations hold the connector itself, because they go on using its parts until their end.

void UpstreamConnector::start()
{
    m_timer.expires_after(m_context.limits.connect);
    m_timer.async_wait([self = shared_from_this()](const boost::system::error_code& error) {
        if (!error)
            self->finish(nullptr, "no connection in time");
    });

    const std::string* mapped = m_context.mappedAddress(m_origin.endpoint);
    m_mapped = mapped != nullptr;
    const std::optional<HostPort> address = mapped ? parseAuthority(*mapped, 0) : m_origin.endpoint;
    if (!address) {
        boost::asio::post(m_socket.get_executor(), [self = shared_from_this()] {
            self->finish(nullptr, "the address it is mapped to is not \"address:port\"");
        });
        return;
    }
    lookUp(*address);
}

void UpstreamConnector::lookUp(const HostPort& address)
{
    const std::string host = address.bareHost();
    boost::system::error_code notAnAddress;
    const auto literal = boost::asio::ip::make_address(host, notAnAddress);
    if (!notAnAddress) {
        connect(Tcp::resolver::results_type::create(Tcp::endpoint(literal, address.port), host, ""));
        return;
    }
    m_resolver.async_resolve(host, std::to_string(address.port),
                             [self = shared_from_this()](const boost::system::error_code& error,
                                                         const Tcp::resolver::results_type& endpoints) {
                                 if (error)
                                     self->finish(nullptr, "name lookup failed: " + error.message());
                                 else if (self->m_done)
                                     self->connect(endpoints);
                             });
}

void UpstreamConnector::connect(const Tcp::resolver::results_type& endpoints)
{
    m_endpoints = endpoints;
    m_next = m_endpoints.begin();
    connectNext(boost::asio::error::not_found);
}

/** Tries the addresses one after the other; `lastError` is why the one before did not do. */
void UpstreamConnector::connectNext(boost::system::error_code lastError)
{
    while (m_next != m_endpoints.end()) {
        const Tcp::endpoint endpoint = m_next->endpoint();
        ++m_next;
        boost::system::error_code error;
        m_socket.close(error);
        base::openStream(m_socket, endpoint.protocol(), error);
        if (error) {
            lastError = error;
            continue;
        }
        m_socket.async_connect(endpoint,
                               [self = shared_from_this()](const boost::system::error_code& failure) {
                                   if (self->m_done && failure)
                                       self->connectNext(failure);
                                   else if (self->m_done)
                                       self->onConnected();
                               });
        return;
    }
    finish(nullptr, lastError.message());
}

void UpstreamConnector::onConnected()
{
    boost::system::error_code ignored;
    m_socket.set_option(boost::asio::socket_base::keep_alive(true), ignored);
    m_transport = std::make_shared<Transport>(std::move(m_socket));
    if (m_origin.scheme == Scheme::Http) {
        finish(m_transport, {});
        return;
    }
    // A mapped host is a server on this machine with a certificate of its own making.
    SslPtr ssl = m_context.tls.clientSession(m_origin.endpoint.bareHost(), !m_mapped);
    if (!ssl) {
        finish(nullptr, "no TLS session");
        return;
    }
    m_transport->startTls(std::move(ssl));
    m_transport->setListener(weak_from_this());
    shakeHands();
}

void UpstreamConnector::shakeHands()
{
    if (!m_transport || !m_done)
        return;
    const IoResult result = m_transport->handshake();
    if (result.blocked())
        m_transport->want(result);
    else if (result.done())
        finish(m_transport, {});
    else
        finish(nullptr, "TLS handshake failed: " + m_transport->lastError());
}

void UpstreamConnector::onReadable(Transport&)
{
    shakeHands();
}

void UpstreamConnector::onWritable(Transport&)
{
    shakeHands();
}

void UpstreamConnector::finish(std::shared_ptr<Transport> transport, const std::string& failure)
{
    const Done done = std::move(m_done);
    cancel();
    if (done)
        done(std::move(transport), failure);
}

void UpstreamConnector::cancel()
{
    m_done = nullptr;
    m_timer.cancel();
    m_resolver.cancel();
    boost::system::error_code ignored;
    m_socket.close(ignored);
    m_transport.reset();
}

} // namespace gateway
