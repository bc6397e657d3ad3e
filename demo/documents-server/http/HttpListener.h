#pragma once

#include <functional>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

namespace documents {

/**
 * Accepts connections on 127.0.0.1 and hands each to a function, for as long as it lives and the io_context
 * runs. Lives on the io_context's thread once that runs.
 */
class HttpListener
{
public:
    using Serve = std::function<void(boost::asio::ip::tcp::socket)>;

    /** Listens at once; port 0 takes a free one. Throws boost::system::system_error when the port is not to
     * be had. */
    HttpListener(boost::asio::io_context& context, unsigned short port, Serve serve);

    unsigned short port() const;

private:
    void acceptNext();
    void onReady(boost::system::error_code error);
    void onRetry(boost::system::error_code error);

    boost::asio::ip::tcp::acceptor m_acceptor;
    boost::asio::steady_timer m_retry;
    Serve m_serve;
};

} // namespace documents
