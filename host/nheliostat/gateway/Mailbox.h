#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>

#include <mutex>
#include <utility>

namespace gateway {

/** The way to a worker's thread for objects that may outlive the worker. Any thread. */
class Mailbox
{
public:
    explicit Mailbox(boost::asio::io_context& io)
        : m_io(&io)
    {
    }

    /** Runs `task` on the worker's thread; drops it when the worker has ended. */
    template <typename Task>
    void post(Task&& task)
    {
        const std::lock_guard lock(m_mutex);
        if (m_io)
            boost::asio::post(*m_io, std::forward<Task>(task));
    }

    void close()
    {
        const std::lock_guard lock(m_mutex);
        m_io = nullptr;
    }

private:
    std::mutex m_mutex;
    boost::asio::io_context* m_io;
};

} // namespace gateway
