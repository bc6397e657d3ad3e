#include "gateway/Acceptor.h"

#include <chrono>
#include <stdexcept>

namespace gateway {
namespace {

using Tcp = boost::asio::ip::tcp;

} // namespace

Acceptor::Acceptor(const std::vector<std::unique_ptr<Worker>>& workers)
    : m_workers(workers)
    , m_acceptor(workers.front()->io())
    , m_pause(workers.front()->io())
{
    try {
        m_acceptor.open(Tcp::v4());
        m_acceptor.bind(Tcp::endpoint(boost::asio::ip::address_v4::loopback(), 0));
        m_acceptor.listen();
        m_port = m_acceptor.local_endpoint().port();
    } catch (const boost::system::system_error& error) {
        throw std::runtime_error(std::string("request gateway: cannot listen: ") + error.what());
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
    m_acceptor.async_accept([this](const boost::system::error_code& error, Tcp::socket socket) {
        onAccepted(error, std::move(socket));
    });
}

void Acceptor::onAccepted(const boost::system::error_code& error, Tcp::socket socket)
{
    if (!m_acceptor.is_open())
        return;
    if (error) {
        // Out of file descriptors, most likely: trying again at once would only burn time.
        m_pause.expires_after(std::chrono::milliseconds(100));
        m_pause.async_wait([this](const boost::system::error_code& stopped) {
            if (!stopped)
                accept();
        });
        return;
    }
    boost::system::error_code ignored;
    m_workers[m_next]->adopt(FileHandle(socket.release(ignored)));
    m_next = (m_next + 1) % m_workers.size();
    accept();
}

} // namespace gateway
