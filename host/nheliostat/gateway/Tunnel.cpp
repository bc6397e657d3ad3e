#include "gateway/Tunnel.h"

namespace gateway {
namespace {

constexpr std::size_t bufferSize = 64 * 1024;
// After so many buffers other connections of the thread get their turn.
constexpr int buffersPerTurn = 16;

} // namespace

Tunnel::Tunnel(std::shared_ptr<Transport> browser, std::shared_ptr<Transport> server, Done done)
    : m_done(std::move(done))
{
    m_directions[0].from = browser;
    m_directions[0].to = server;
    m_directions[1].from = std::move(server);
    m_directions[1].to = std::move(browser);
}

void Tunnel::start(std::string toServer, std::string toBrowser)
{
    m_directions[0].pending = std::move(toServer);
    m_directions[1].pending = std::move(toBrowser);
    for (Direction& direction : m_directions)
        direction.from->setListener(weak_from_this());
    pump();
}

void Tunnel::onReadable(Transport&)
{
    pump();
}

void Tunnel::onWritable(Transport&)
{
    pump();
}

void Tunnel::pump()
{
    if (!m_done)
        return;
    const bool alive = pump(m_directions[0]) && pump(m_directions[1]);
    if (alive && !(m_directions[0].endPassedOn && m_directions[1].endPassedOn))
        return;
    end();
}

void Tunnel::end()
{
    const Done done = std::move(m_done);
    m_done = nullptr;
    done(m_directions[1].received);
}

void Tunnel::expireIfDue(std::chrono::steady_clock::time_point now, std::chrono::milliseconds silence)
{
    const qint64 moved = m_directions[0].received + m_directions[1].received;
    const bool bothOpen = !m_directions[0].sourceEnded && !m_directions[1].sourceEnded;
    if (bothOpen || moved != m_movedBefore) {
        m_movedBefore = moved;
        m_movedAt = now;
    } else if (m_done && now - m_movedAt >= silence) {
        end();
    }
}

bool Tunnel::flush(Direction& direction, bool& blocked)
{
    while (direction.written < direction.pending.size()) {
        const IoResult result = direction.to->write(direction.pending.data() + direction.written,
                                                    direction.pending.size() - direction.written);
        direction.written += result.bytes;
        blocked = result.blocked();
        if (blocked)
            direction.to->want(result);
        if (!result.done())
            return blocked;
    }
    direction.pending.clear();
    direction.written = 0;
    return true;
}

bool Tunnel::pump(Direction& direction)
{
    for (int turn = 0;; ++turn) {
        bool blocked = false;
        if (!flush(direction, blocked))
            return false;
        if (blocked)
            return true;
        if (direction.sourceEnded) {
            if (!direction.endPassedOn)
                direction.to->closeWrite();
            direction.endPassedOn = true;
            return true;
        }
        if (turn >= buffersPerTurn && !direction.from->hasBufferedInput()) {
            direction.from->wantRead();
            return true;
        }
        direction.pending.resize(bufferSize);
        const IoResult result = direction.from->read(direction.pending.data(), bufferSize);
        direction.pending.resize(result.bytes);
        direction.received += static_cast<qint64>(result.bytes);
        if (result.blocked()) {
            direction.from->want(result);
            return true;
        }
        if (result.status == IoResult::Status::Failed)
            return false;
        direction.sourceEnded = result.status == IoResult::Status::Closed;
    }
}

} // namespace gateway
