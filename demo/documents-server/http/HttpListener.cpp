#include "http/HttpListener.h"

#include <utility>

#include <boost/beast/core/bind_handler.hpp>

#include "base/StreamSockets.h"

namespace documents {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

constexpr std::chrono::milliseconds retryDelay(100);

} // namespace

HttpListener::HttpListener(asio::io_context& context, unsigned short port, Serve serve)
    : m_acceptor(context)
    , m_retry(context)
    , m_serve(std::move(serve))
{
    boost::system::error_code error;
    base::openStream(m_acceptor, tcp::v4(), error);
    if (error)
        throw boost::system::system_error(error);
    m_acceptor.non_blocking(true);
    m_acceptor.set_option(asio::socket_base::reuse_address(true));
    m_acceptor.bind(tcp::endpoint(asio::ip::address_v4::loopback(), port));
    m_acceptor.listen();
    acceptNext();
}

unsigned short HttpListener::port() const
{
    return m_acceptor.local_endpoint().port();
}

void HttpListener::acceptNext()
{
    m_acceptor.async_wait(tcp::acceptor::wait_read,
                          boost::beast::bind_front_handler(&HttpListener::onReady, this));
}

void HttpListener::onReady(boost::system::error_code error)
{
    if (error == asio::error::operation_aborted)
        return;
    tcp::socket socket(m_acceptor.get_executor());
    const int descriptor = error ? -1 : base::acceptStream(m_acceptor, error);
    if (descriptor >= 0)
        socket.assign(tcp::v4(), descriptor, error);
    if (!error)
        m_serve(std::move(socket));
    if (!error || error == asio::error::would_block || error == asio::error::connection_aborted)
        return acceptNext();
    // Out of descriptors, most likely: try again when some may have been given back.
    m_retry.expires_after(retryDelay);
    m_retry.async_wait(boost::beast::bind_front_handler(&HttpListener::onRetry, this));
}

void HttpListener::onRetry(boost::system::error_code error)
{
    if (!error)
        acceptNext();
}

} // namespace documents
