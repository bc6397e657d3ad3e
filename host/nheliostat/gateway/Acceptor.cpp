#include "gateway/Acceptor.h"

#include "base/StreamSockets.h"

#include <chrono>
#include <stdexcept>

namespace gateway {
namespace {

using Tcp = boost::asio::ip::tcp;

// After so many connections others of the thread get their turn.
constexpr int mostPerTurn = 64;

} // namespace

Acceptor::Acceptor(const std::vector<std::unique_ptr<Worker>>& workers)
    : m_workers(workers)
    , m_acceptor(workers.front()->io())
    , m_pause(workers.front()->io())
{
    boost::system::error_code error;
    base::openStream(m_acceptor, Tcp::v4(), error);
    try {
        if (error)
            throw boost::system::system_error(error);
        m_acceptor.non_blocking(true);
        m_acceptor.bind(Tcp::endpoint(boost::asio::ip::address_v4::loopback(), 0));
        m_acceptor.listen();
        m_port = m_acceptor.local_endpoint().port();
    } catch (const boost::system::system_error& failure) {
        throw std::runtime_error(std::string("request gateway: cannot listen: ") + failure.what());
    }
}

void Acceptor::stop()
{
    boost::system::error_code ignored;
    m_acceptor.close(ignored);
    m_pause.cancel();
}

void Acceptor::accept()
{
    m_acceptor.async_wait(Tcp::acceptor::wait_read, [this](const boost::system::error_code& error) {
        if (!error && m_acceptor.is_open())
            acceptWaiting();
    });
}

void Acceptor::acceptWaiting()
{
    for (int turn = 0; turn < mostPerTurn; ++turn) {
        boost::system::error_code error;
        FileHandle connection(base::acceptStream(m_acceptor, error));
        if (error == boost::asio::error::would_block)
            break;
        if (error && error != boost::asio::error::connection_aborted) {
            pause();
            return;
        }
        if (error)
            continue;
        m_workers[m_next]->adopt(std::move(connection));
        m_next = (m_next + 1) % m_workers.size();
    }
    accept();
}

/** Out of file descriptors, most likely: trying again at once would only burn time. */
void Acceptor::pause()
{
    m_pause.expires_after(std::chrono::milliseconds(100));
    m_pause.async_wait([this](const boost::system::error_code& stopped) {
        if (!stopped)
            accept();
    });
}

} // namespace gateway
