#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl.hpp>

#include <memory>
#include <string>

/** A blocking connection, plain at first; fit for Beast's synchronous reads. */
class TestStream
{
public:
    using Tcp = boost::asio::ip::tcp;

    TestStream();

    Tcp::socket& socket() { return m_socket; }
    void connect(unsigned short port);
    /** Continues under TLS; `context` outlives the stream. */
    void startTls(boost::asio::ssl::context& context, boost::asio::ssl::stream_base::handshake_type role,
                  const char* alpn = nullptr);
    SSL* ssl() { return m_tls ? m_tls->native_handle() : nullptr; }

    void write(const std::string& text);
    /** Exactly `size` bytes, fewer at the end of the connection. */
    std::string read(std::size_t size);
    /** All until the peer ends. */
    std::string readToEnd() { return read(static_cast<std::size_t>(-1)); }
    /** True when the peer ends the connection, or has; false when it sends something. */
    bool ends() { return read(1).empty(); }
    void closeWrite();
    void close();

    template <typename Buffers>
    std::size_t read_some(const Buffers& buffers, boost::system::error_code& error)
    {
        return m_tls ? m_tls->read_some(buffers, error) : m_socket.read_some(buffers, error);
    }
    template <typename Buffers>
    std::size_t read_some(const Buffers& buffers)
    {
        return m_tls ? m_tls->read_some(buffers) : m_socket.read_some(buffers);
    }

private:
    boost::asio::io_context m_io;
    Tcp::socket m_socket;
    std::unique_ptr<boost::asio::ssl::stream<Tcp::socket&>> m_tls;
};
