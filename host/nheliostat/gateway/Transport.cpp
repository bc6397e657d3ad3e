#include "gateway/Transport.h"

#include <openssl/err.h>
#include <openssl/x509v3.h>
#include <poll.h>
#include <sys/sendfile.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace gateway {
namespace {

// One TLS record holds at most this much.
constexpr std::size_t tlsRecordSize = 16 * 1024;
using TlsRecord = std::array<char, tlsRecordSize>;

std::string opensslError(SSL* ssl)
{
    const long verification = SSL_get_verify_result(ssl);
    if (verification != X509_V_OK)
        return std::string("certificate: ") + X509_verify_cert_error_string(verification);
    char text[256] = "TLS failure";
    if (const unsigned long code = ERR_peek_last_error())
        ERR_error_string_n(code, text, sizeof text);
    return text;
}

} // namespace

Transport::Transport(boost::asio::ip::tcp::socket socket)
    : m_socket(std::move(socket))
{
    boost::system::error_code ignored;
    m_socket.non_blocking(true, ignored);
    m_socket.set_option(boost::asio::ip::tcp::no_delay(true), ignored);
}

void Transport::startTls(SslPtr ssl)
{
    m_ssl = std::move(ssl);
    SSL_set_fd(m_ssl.get(), m_socket.native_handle());
    SSL_set_mode(m_ssl.get(), SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER |
                                  SSL_MODE_RELEASE_BUFFERS);
}

IoResult Transport::systemResult(ssize_t result, IoResult::Status blocked)
{
    if (result > 0)
        return {IoResult::Status::Done, static_cast<std::size_t>(result)};
    if (result == 0)
        return {IoResult::Status::Closed};
    if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)
        return {blocked};
    m_lastError = std::system_category().message(errno);
    return {IoResult::Status::Failed};
}

IoResult Transport::tlsResult(int result)
{
    if (result > 0)
        return {IoResult::Status::Done, static_cast<std::size_t>(result)};
    const int systemError = errno;
    switch (SSL_get_error(m_ssl.get(), result)) {
    case SSL_ERROR_WANT_READ:
        return {IoResult::Status::NeedsRead};
    case SSL_ERROR_WANT_WRITE:
        return {IoResult::Status::NeedsWrite};
    case SSL_ERROR_ZERO_RETURN:
        return {IoResult::Status::Closed};
    case SSL_ERROR_SYSCALL:
        m_lastError = systemError ? std::system_category().message(systemError) : "connection closed";
        return {IoResult::Status::Failed};
    default:
        m_lastError = opensslError(m_ssl.get());
        return {IoResult::Status::Failed};
    }
}

IoResult Transport::handshake()
{
    ERR_clear_error();
    return tlsResult(SSL_do_handshake(m_ssl.get()));
}

IoResult Transport::read(char* data, std::size_t size)
{
    if (!m_ssl)
        return systemResult(::recv(m_socket.native_handle(), data, size, 0), IoResult::Status::NeedsRead);
    ERR_clear_error();
    return tlsResult(SSL_read(m_ssl.get(), data, static_cast<int>(size)));
}

IoResult Transport::write(const iovec* parts, int count, bool more)
{
    if (!m_ssl) {
        msghdr message = {};
        message.msg_iov = const_cast<iovec*>(parts);
        message.msg_iovlen = static_cast<std::size_t>(count);
        return systemResult(
            ::sendmsg(m_socket.native_handle(), &message, MSG_NOSIGNAL | (more ? MSG_MORE : 0)),
            IoResult::Status::NeedsWrite);
    }
    ERR_clear_error();
    if (count == 1)
        return tlsResult(SSL_write(m_ssl.get(), parts->iov_base,
                                   static_cast<int>(std::min(parts->iov_len, tlsRecordSize))));
    // A head and a small body share one record.
    static thread_local TlsRecord record;
    std::size_t filled = 0;
    for (int i = 0; i < count && filled < record.size(); ++i) {
        const std::size_t piece = std::min(parts[i].iov_len, record.size() - filled);
        std::memcpy(record.data() + filled, parts[i].iov_base, piece);
        filled += piece;
    }
    return tlsResult(SSL_write(m_ssl.get(), record.data(), static_cast<int>(filled)));
}

IoResult Transport::write(const char* data, std::size_t size)
{
    const iovec part = {const_cast<char*>(data), size};
    return write(&part, 1);
}

IoResult Transport::sendFile(int file, off_t offset, std::size_t size)
{
    IoResult result;
    if (m_ssl) {
        static thread_local TlsRecord record;
        const ssize_t got = ::pread(file, record.data(), std::min(size, record.size()), offset);
        result = got > 0 ? write(record.data(), static_cast<std::size_t>(got))
                         : systemResult(got, IoResult::Status::NeedsWrite);
    } else {
        result = systemResult(::sendfile(m_socket.native_handle(), file, &offset, size),
                              IoResult::Status::NeedsWrite);
    }
    if (result.status == IoResult::Status::Closed) {
        m_lastError = "the file became shorter";
        result.status = IoResult::Status::Failed;
    }
    return result;
}

void Transport::closeWrite()
{
    if (m_ssl) {
        ERR_clear_error();
        SSL_shutdown(m_ssl.get());
    }
    boost::system::error_code ignored;
    m_socket.shutdown(boost::asio::ip::tcp::socket::shutdown_send, ignored);
}

void Transport::close()
{
    boost::system::error_code ignored;
    m_socket.close(ignored);
}

void Transport::wantRead()
{
    if (m_readAwaited || !m_socket.is_open())
        return;
    m_readAwaited = true;
    m_socket.async_wait(boost::asio::ip::tcp::socket::wait_read,
                        [weak = weak_from_this()](const boost::system::error_code& error) {
                            const std::shared_ptr<Transport> self = weak.lock();
                            if (!self)
                                return;
                            self->m_readAwaited = false;
                            if (const auto listener = self->m_listener.lock(); listener && !error)
                                listener->onReadable(*self);
                        });
}

void Transport::wantWrite()
{
    if (m_writeAwaited || !m_socket.is_open())
        return;
    m_writeAwaited = true;
    m_socket.async_wait(boost::asio::ip::tcp::socket::wait_write,
                        [weak = weak_from_this()](const boost::system::error_code& error) {
                            const std::shared_ptr<Transport> self = weak.lock();
                            if (!self)
                                return;
                            self->m_writeAwaited = false;
                            if (const auto listener = self->m_listener.lock(); listener && !error)
                                listener->onWritable(*self);
                        });
}

void Transport::want(const IoResult& result)
{
    if (result.status == IoResult::Status::NeedsRead)
        wantRead();
    else if (result.status == IoResult::Status::NeedsWrite)
        wantWrite();
}

bool Transport::peerGone() const
{
    pollfd state = {const_cast<Transport*>(this)->m_socket.native_handle(), POLLRDHUP, 0};
    return ::poll(&state, 1, 0) > 0 && (state.revents & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
}

bool Transport::isQuiet() const
{
    pollfd state = {const_cast<Transport*>(this)->m_socket.native_handle(), POLLIN | POLLRDHUP, 0};
    return !hasBufferedInput() && ::poll(&state, 1, 0) == 0;
}

int Transport::peekByte() const
{
    unsigned char byte = 0;
    const int socket = const_cast<Transport*>(this)->m_socket.native_handle();
    return ::recv(socket, &byte, 1, MSG_PEEK) == 1 ? byte : -1;
}

} // namespace gateway
