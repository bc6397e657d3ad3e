#pragma once

#include "gateway/RequestTarget.h"
#include "gateway/Transport.h"

#include <chrono>
#include <list>
#include <memory>
#include <string>

namespace gateway {

/** Idle connections to servers, ready for another request. Belongs to one worker's thread. */
class UpstreamPool
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    using Duration = std::chrono::steady_clock::duration;

    /** Connections idle for `longest` are closed. */
    explicit UpstreamPool(Duration longest)
        : m_longest(longest)
    {
    }

    /**
     * The connection to `origin` that was idle for the shortest time, none that is idle since before
     * `earliest`; nullptr when none is usable.
     */
    std::shared_ptr<Transport> take(const Origin& origin, TimePoint earliest);
    /** Keeps `transport`, which has no request under way; beyond the bounds the oldest goes. */
    void give(const Origin& origin, std::shared_ptr<Transport> transport, TimePoint now);
    /** Closes what has been idle for too long. */
    void expire(TimePoint now);
    void clear() { m_idle.clear(); }

private:
    struct Idle
    {
        std::string key;
        std::shared_ptr<Transport> transport;
        TimePoint since;
    };

    const Duration m_longest;
    std::list<Idle> m_idle; //!< newest first
};

} // namespace gateway
