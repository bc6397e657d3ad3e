#pragma once

#include "gateway/Worker.h"

#include <boost/asio/steady_timer.hpp>

#include <cstdint>
#include <memory>
#include <vector>

namespace gateway {

/** Listens on a random loopback port and deals the connections out to the workers in turn. */
class Acceptor
{
public:
    /** Works on the thread of the first worker. Throws std::runtime_error when no port can be bound. */
    explicit Acceptor(const std::vector<std::unique_ptr<Worker>>& workers);

    std::uint16_t port() const { return m_port; }
    /** Any thread, before the workers start or on the first worker's. */
    void start() { accept(); }
    /** On the first worker's thread. */
    void stop();

private:
    void accept();
    void acceptWaiting();
    void pause();

    const std::vector<std::unique_ptr<Worker>>& m_workers;
    boost::asio::ip::tcp::acceptor m_acceptor;
    boost::asio::steady_timer m_pause;
    std::uint16_t m_port = 0;
    std::size_t m_next = 0;
};

} // namespace gateway
