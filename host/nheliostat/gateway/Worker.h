#pragma once

#include "gateway/FileHandle.h"
#include "gateway/Mailbox.h"
#include "gateway/UpstreamPool.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/steady_timer.hpp>

#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace gateway {

class ClientConnection;
class GatewayContext;

/** One thread with its event loop and the browser connections that live on it, from accept to close. */
class Worker
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    /** `context` outlives the worker. */
    explicit Worker(GatewayContext& context);
    /** Stops when that has not been done. */
    ~Worker();

    void start();
    /** Ends every connection and joins the thread. Not on the worker's own thread. */
    void stop();

    // Any thread.
    /** Takes over an accepted connection. */
    void adopt(FileHandle socket);
    /** Ends the view's requests that wait for a handler, with an error. */
    void endPending(const std::string& viewId);
    const std::shared_ptr<Mailbox>& mailbox() const { return m_mailbox; }

    // The worker's thread.
    boost::asio::io_context& io() { return m_io; }
    GatewayContext& context() { return m_context; }
    UpstreamPool& pool() { return m_pool; }
    /** The time of the last sweep, at most a second ago. */
    TimePoint now() const { return m_now; }
    /** Lets go of a closed connection. */
    void forget(const ClientConnection& connection);

private:
    void run();
    void welcome(FileHandle accepted);
    void sweep();
    void scheduleSweep();
    std::chrono::milliseconds sweepPeriod() const;
    void shutDown();

    GatewayContext& m_context;
    boost::asio::io_context m_io;
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> m_work;
    std::shared_ptr<Mailbox> m_mailbox;
    boost::asio::steady_timer m_sweepTimer;
    TimePoint m_now = std::chrono::steady_clock::now();
    UpstreamPool m_pool;
    std::vector<std::shared_ptr<ClientConnection>> m_connections;
    std::thread m_thread;
};

} // namespace gateway
