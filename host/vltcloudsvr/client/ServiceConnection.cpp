#include "vltcloudsvr/client/ServiceConnection.h"

#include "vltcloudsvr/common/Transport.h"

#include <QFile>

#include "CloudService.h"

#include <thrift/transport/TSocket.h>

#include <cerrno>
#include <exception>
#include <fcntl.h>
#include <sys/socket.h>
#include <utility>

namespace vlt::cloudsvr {
namespace {

constexpr int greetingTimeoutMs = 1000;

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
    auto socket =
        std::make_shared<apache::thrift::transport::TSocket>(QFile::encodeName(m_socketPath).toStdString());
    socket->setConnTimeout(greetingTimeoutMs);
    try {
        socket->open();
        // Programs that the shell starts must not keep the service busy.
        ::fcntl(socket->getSocketFD(), F_SETFD, FD_CLOEXEC);
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
