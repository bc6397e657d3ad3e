#pragma once

#include <chrono>
#include <cstddef>
#include <optional>

namespace documents {

/** The line that the server pretends to stand behind; zero means unlimited. */
struct LinkSettings
{
    static constexpr int maxRttMs = 60'000;
    static constexpr int maxKbps = 100'000'000;

    int rttMs = 0; ///< one round trip
    int kbps = 0;  ///< thousand bits per second, shared by all connections, server to client
};

/**
 * The arithmetic of a slow line: how long things take, never the waiting itself. One line is shared by all
 * connections: each asks for one short piece after the other, so that the line's rate divides among them.
 */
class LinkShaper
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    explicit LinkShaper(LinkSettings settings = {});

    LinkSettings settings() const { return m_settings; }

    /** Takes effect with the next delay or piece asked for; pieces already granted keep their time. */
    void setSettings(LinkSettings settings);

    /** From connecting to the first request: one round trip, two with TLS. */
    std::chrono::milliseconds setUpDelay(bool tls) const;
    /** From a request to the first byte of its reply. */
    std::chrono::milliseconds requestDelay() const;

    /** How many of the `remaining` bytes are to be sent as the next piece: about ten milliseconds' worth. */
    std::size_t pieceSize(std::size_t remaining) const;

    /**
     * Puts a piece on the line and returns when its last byte has left it. `previous` is the time granted for
     * the reply's preceding piece: a timer that woke a little late does not make the line slower than it is.
     */
    TimePoint reserve(std::size_t bytes, TimePoint now, std::optional<TimePoint> previous);

private:
    LinkSettings m_settings;
    TimePoint m_busyUntil{};
};

} // namespace documents
