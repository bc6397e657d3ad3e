#pragma once

#include <boost/asio/basic_socket_acceptor.hpp>
#include <boost/system/error_code.hpp>

#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

/**
 * Stream sockets that no child process ever holds: close-on-exec from their first moment on. Asio makes its
 * own without, so that a process which is started at any time keeps copies of them, and with these the
 * connections.
 */
namespace base {

/** Gives `socket`, which is closed, a descriptor; as its own `open`. */
template <typename Socket>
void openStream(Socket& socket, const typename Socket::protocol_type& protocol,
                boost::system::error_code& error)
{
    const int descriptor = ::socket(protocol.family(), protocol.type() | SOCK_CLOEXEC, protocol.protocol());
    if (descriptor < 0) {
        error.assign(errno, boost::system::system_category());
        return;
    }
    socket.assign(protocol, descriptor, error);
    if (error)
        ::close(descriptor);
}

/**
 * The descriptor of the next connection that waits at `acceptor`, which does not block; its caller owns it.
 * -1 and the error when there is none: would_block, or why it cannot be had.
 */
template <typename Acceptor>
int acceptStream(Acceptor& acceptor, boost::system::error_code& error)
{
    const int descriptor = ::accept4(acceptor.native_handle(), nullptr, nullptr, SOCK_CLOEXEC);
    if (descriptor < 0)
        error.assign(errno, boost::system::system_category());
    else
        error.clear();
    return descriptor;
}

} // namespace base
