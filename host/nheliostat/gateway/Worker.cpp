#include "gateway/Worker.h"

#include "gateway/ClientConnection.h"
#include "gateway/GatewayContext.h"

#include <pthread.h>

#include <algorithm>
#include <csignal>

namespace gateway {

Worker::Worker(GatewayContext& context)
    : m_context(context)
    , m_io(1)
    , m_work(m_io.get_executor())
    , m_mailbox(std::make_shared<Mailbox>(m_io))
    , m_sweepTimer(m_io)
    , m_pool(context.limits.serverIdle)
{
}

Worker::~Worker()
{
    stop();
}

void Worker::start()
{
    m_thread = std::thread(&Worker::run, this);
}

void Worker::stop()
{
    if (!m_thread.joinable())
        return;
    m_mailbox->post([this] { shutDown(); });
    m_thread.join();
}

void Worker::run()
{
    // A browser that closes while it is written to is an error of that call, not a signal to the process.
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
    pthread_setname_np(pthread_self(), "gateway");

    scheduleSweep();
    m_io.run();
}

void Worker::shutDown()
{
    m_mailbox->close();
    m_sweepTimer.cancel();
    for (const std::shared_ptr<ClientConnection>& connection : std::exchange(m_connections, {}))
        connection->close();
    m_pool.clear();
    m_work.reset();
}

void Worker::adopt(FileHandle socket)
{
    m_mailbox->post([this, handle = std::move(socket)]() mutable { welcome(std::move(handle)); });
}

void Worker::welcome(FileHandle accepted)
{
    boost::asio::ip::tcp::socket socket(m_io);
    boost::system::error_code error;
    socket.assign(boost::asio::ip::tcp::v4(), accepted.get(), error);
    if (error)
        return;
    accepted.release();
    m_connections.push_back(std::make_shared<ClientConnection>(*this, std::move(socket)));
    const std::shared_ptr<ClientConnection> connection = m_connections.back();
    connection->start();
}

void Worker::endPending(const std::string& viewId)
{
    m_mailbox->post([this, viewId] {
        const auto connections = m_connections; // ending may close and forget
        for (const std::shared_ptr<ClientConnection>& connection : connections)
            connection->endPending(viewId);
    });
}

void Worker::forget(const ClientConnection& connection)
{
    const auto found = std::find_if(m_connections.begin(), m_connections.end(),
                                    [&connection](const auto& entry) { return entry.get() == &connection; });
    if (found == m_connections.end())
        return;
    const std::shared_ptr<ClientConnection> kept = std::exchange(*found, m_connections.back());
    m_connections.pop_back();
}

/** Often enough for the shortest limit, at least every second. */
std::chrono::milliseconds Worker::sweepPeriod() const
{
    const GatewayLimits& limits = m_context.limits;
    const std::chrono::milliseconds shortest =
        std::min({limits.idle, limits.requestHead, limits.handshake, limits.refused, limits.farewell,
                  limits.serverIdle, limits.answerHead, limits.silence});
    return std::clamp(shortest / 4, std::chrono::milliseconds(10), std::chrono::milliseconds(1000));
}

void Worker::scheduleSweep()
{
    m_sweepTimer.expires_after(sweepPeriod());
    m_sweepTimer.async_wait([this](const boost::system::error_code& error) {
        if (!error)
            sweep();
    });
}

void Worker::sweep()
{
    m_now = std::chrono::steady_clock::now();
    const auto connections = m_connections; // expiring forgets
    for (const std::shared_ptr<ClientConnection>& connection : connections)
        connection->expireIfDue(m_now);
    m_pool.expire(m_now);
    // The timer may have fired before `shutDown` could cancel it: setting it again would keep the thread for good.
    if (m_work.owns_work())
        scheduleSweep();
}

} // namespace gateway
