#include "http/HttpListener.h"

#include <utility>

#include <boost/beast/core/bind_handler.hpp>

namespace documents {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

constexpr std::chrono::milliseconds retryDelay(100);

} // namespace

HttpListener::HttpListener(asio::io_context& context, unsigned short port, Serve serve)
    : m_acceptor(context, tcp::endpoint(asio::ip::address_v4::loopback(), port))
    , m_retry(context)
    , m_serve(std::move(serve))
{
    acceptNext();
}

unsigned short HttpListener::port() const
{
    return m_acceptor.local_endpoint().port();
}

void HttpListener::acceptNext()
{
    m_acceptor.async_accept(boost::beast::bind_front_handler(&HttpListener::onAccepted, this));
}

void HttpListener::onAccepted(boost::system::error_code error, tcp::socket socket)
{
    if (error == asio::error::operation_aborted)
        return;
    if (!error) {
        m_serve(std::move(socket));
        return acceptNext();
    }
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
