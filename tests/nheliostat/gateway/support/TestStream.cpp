#include "support/TestStream.h"

#include <boost/asio/write.hpp>

#include <algorithm>
#include <array>

TestStream::TestStream()
    : m_socket(m_io)
{
}

void TestStream::connect(unsigned short port)
{
    m_socket.connect(Tcp::endpoint(boost::asio::ip::address_v4::loopback(), port));
}

void TestStream::startTls(boost::asio::ssl::context& context,
                          boost::asio::ssl::stream_base::handshake_type role, const char* alpn)
{
    m_tls = std::make_unique<boost::asio::ssl::stream<Tcp::socket&>>(m_socket, context);
    if (alpn) {
        std::string wire(1, static_cast<char>(std::char_traits<char>::length(alpn)));
        wire += alpn;
        SSL_set_alpn_protos(m_tls->native_handle(), reinterpret_cast<const unsigned char*>(wire.data()),
                            static_cast<unsigned>(wire.size()));
    }
    m_tls->handshake(role);
}

void TestStream::write(const std::string& text)
{
    if (m_tls)
        boost::asio::write(*m_tls, boost::asio::buffer(text));
    else
        boost::asio::write(m_socket, boost::asio::buffer(text));
}

std::string TestStream::read(std::size_t size)
{
    std::string text;
    std::array<char, 64 * 1024> piece;
    boost::system::error_code error;
    while (!error && text.size() < size) {
        const std::size_t most = std::min(piece.size(), size - text.size());
        text.append(piece.data(), read_some(boost::asio::buffer(piece.data(), most), error));
    }
    return text;
}

void TestStream::closeWrite()
{
    boost::system::error_code ignored;
    m_socket.shutdown(Tcp::socket::shutdown_send, ignored);
}

void TestStream::close()
{
    boost::system::error_code ignored;
    m_socket.close(ignored);
}
