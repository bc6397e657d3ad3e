#include "vltcloudsvr/transfers/HashPipe.h"

namespace vlt::cloudsvr {
namespace {

constexpr std::size_t threadedPieces = 4;

} // namespace

HashPipe::HashPipe(Sha1& sum, bool isThreaded)
    : m_sum(sum)
    , m_pieces(isThreaded ? threadedPieces : 1, std::vector<char>(pieceSize))
    , m_sizes(m_pieces.size())
{
    if (isThreaded)
        m_thread = std::thread([this] { run(); });
}

HashPipe::~HashPipe()
{
    finish();
}

char* HashPipe::piece()
{
    if (m_thread.joinable()) {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [this] { return m_filled - m_summed < m_pieces.size(); });
    }
    return m_pieces[m_filled % m_pieces.size()].data();
}

void HashPipe::add(std::size_t size)
{
    const std::size_t index = m_filled % m_pieces.size();
    if (!m_thread.joinable()) {
        m_sum.add(m_pieces[index].data(), size);
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_sizes[index] = size;
        ++m_filled;
    }
    m_changed.notify_all();
}

void HashPipe::finish()
{
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void HashPipe::run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_isEnding || m_summed < m_filled; });
        if (m_summed == m_filled)
            return;
        const std::size_t index = m_summed % m_pieces.size();
        lock.unlock();
        m_sum.add(m_pieces[index].data(), m_sizes[index]);
        lock.lock();
        ++m_summed;
        m_changed.notify_all();
    }
}

} // namespace vlt::cloudsvr
