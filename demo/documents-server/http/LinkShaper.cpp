#include "http/LinkShaper.h"

#include <algorithm>

namespace documents {
namespace {

constexpr std::size_t smallestPiece = 256;
constexpr std::size_t largestPiece = 65536;
constexpr std::size_t unlimitedPiece = 1048576;
constexpr std::chrono::milliseconds longestCatchUp(20);

} // namespace

LinkShaper::LinkShaper(LinkSettings settings)
    : m_settings(settings)
{
}

void LinkShaper::setSettings(LinkSettings settings)
{
    m_settings = settings;
    m_busyUntil = {};
}

std::chrono::milliseconds LinkShaper::setUpDelay(bool tls) const
{
    return std::chrono::milliseconds(m_settings.rttMs) * (tls ? 2 : 1);
}

std::chrono::milliseconds LinkShaper::requestDelay() const
{
    return std::chrono::milliseconds(m_settings.rttMs);
}

std::size_t LinkShaper::pieceSize(std::size_t remaining) const
{
    if (m_settings.kbps == 0)
        return std::min(remaining, unlimitedPiece);
    // A kilobit per second is a bit per millisecond, so ten milliseconds carry kbps * 10 / 8 bytes.
    const std::size_t tenMilliseconds = static_cast<std::size_t>(m_settings.kbps) * 10 / 8;
    return std::min(remaining, std::clamp(tenMilliseconds, smallestPiece, largestPiece));
}

LinkShaper::TimePoint LinkShaper::reserve(std::size_t bytes, TimePoint now, std::optional<TimePoint> previous)
{
    if (m_settings.kbps == 0)
        return now;
    const TimePoint ready = previous ? std::clamp(*previous, now - longestCatchUp, now) : now;
    const auto duration =
        std::chrono::nanoseconds(bytes * 8 * 1'000'000 / static_cast<std::size_t>(m_settings.kbps));
    m_busyUntil = std::max(m_busyUntil, ready) + duration;
    return m_busyUntil;
}

} // namespace documents
