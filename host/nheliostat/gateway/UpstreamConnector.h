#pragma once

#include "gateway/RequestTarget.h"
#include "gateway/Transport.h"

#include <boost/asio/steady_timer.hpp>

#include <functional>
#include <memory>
#include <string>

namespace gateway {

class GatewayContext;

/**
 * Makes one connection to a server: looks the host up (or takes its mapped address), connects, and shakes
 * hands when the scheme is https. Gives up after the limit of the context.
 *
 * One thread. Whoever starts it keeps it alive and calls `cancel` when the result is no longer wanted.
 */
class UpstreamConnector : public TransportListener, public std::enable_shared_from_this<UpstreamConnector>
{
public:
    /** Called once, never from within `start`. A null transport means failure, with its reason. */
    using Done = std::function<void(std::shared_ptr<Transport> transport, const std::string& failure)>;

    UpstreamConnector(boost::asio::io_context& io, const GatewayContext& context, Origin origin, Done done);

    void start();
    void cancel();

    void onReadable(Transport& transport) override;
    void onWritable(Transport& transport) override;

private:
    using Tcp = boost::asio::ip::tcp;

    void lookUp(const HostPort& address);
    void connect(const Tcp::resolver::results_type& endpoints);
    void connectNext(boost::system::error_code lastError);
    void onConnected();
    void shakeHands();
    void finish(std::shared_ptr<Transport> transport, const std::string& failure);

    const GatewayContext& m_context;
    const Origin m_origin;
    Done m_done;
    bool m_mapped = false;
    Tcp::resolver m_resolver;
    Tcp::resolver::results_type m_endpoints;
    Tcp::resolver::results_type::const_iterator m_next; //!< to be tried
    Tcp::socket m_socket;
    boost::asio::steady_timer m_timer;
    std::shared_ptr<Transport> m_transport;
};

} // namespace gateway
