#include "vltcloudsvr/client/ServiceConnection.h"

#include "vltcloudsvr/common/Transport.h"

#include <QFile>

#include "CloudService.h"

#include <thrift/transport/TSocket.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace vlt::cloudsvr {
namespace {

constexpr int greetingTimeoutMs = 1000;

/**
 * A connection to the socket, or -1. The library would make one that programs which the shell starts keep,
 * and with it the service busy.
 */
int connectTo(const QByteArray& path)
{
    sockaddr_un address = {};
    if (path.size() >= int(sizeof address.sun_path))
        return -1;
    address.sun_family = AF_UNIX;
    std::copy(path.begin(), path.end(), address.sun_path);
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        return -1;
    // A service that does not accept must not hold whoever connects once its queue is full.
    const timeval patience = {greetingTimeoutMs / 1000, 0};
    ::setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    if (::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return descriptor;
    ::close(descriptor);
    return -1;
}

} // namespace

ServiceConnection::ServiceConnection(QString socketPath)
    : m_socketPath(std::move(socketPath))
{
}

ServiceConnection::~ServiceConnection()
{
    close();
}

bool ServiceConnection::isUsable()
{
    if (!m_client)
        return false;
    char byte = 0;
    // Nothing to read is right; the end of the stream, or an answer that nobody waits for, is not.
    return ::recv(m_socket->getSocketFD(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) < 0 &&
           (errno == EAGAIN || errno == EWOULDBLOCK);
}

bool ServiceConnection::open()
{
    close();
    const int descriptor = connectTo(QFile::encodeName(m_socketPath));
    if (descriptor < 0)
        return false;
    auto socket = std::make_shared<apache::thrift::transport::TSocket>(descriptor);
    try {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            if (m_isInterrupted)
                return false;
            m_socket = socket;
        }
        m_client = std::make_unique<rpc::CloudServiceClient>(protocolFactory()->getProtocol(framed(socket)));
        setTimeout(greetingTimeoutMs);
        m_client->ping();
        return true;
    } catch (const std::exception&) {
        close();
        return false;
    }
}

void ServiceConnection::close()
{
    m_client.reset();
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (const auto socket = std::exchange(m_socket, nullptr))
        socket->close();
}

void ServiceConnection::setTimeout(int ms)
{
    m_socket->setRecvTimeout(ms);
    m_socket->setSendTimeout(ms);
}

void ServiceConnection::interrupt()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isInterrupted = true;
    if (m_socket)
        ::shutdown(m_socket->getSocketFD(), SHUT_RDWR);
}

} // namespace vlt::cloudsvr
