#pragma once

#include "vltcloudsvr/client/ServiceConnection.h"
#include "vltcloudsvr/common/Calls.h"
#include "vltcloudsvr/common/ServicePlace.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace vlt::cloudsvr {

/**
 * Waits for what the service tells, on a thread and a connection of its own. It does not start the service:
 * it connects when it is told that one is there, and says when that one is gone.
 */
class EventWatch
{
public:
    using OnEvent = std::function<void(const QString& name, const Values&)>;

    /** Both functions are called on the watch's thread. */
    EventWatch(ServicePlace place, OnEvent onEvent, std::function<void()> onLost);
    ~EventWatch();
    EventWatch(const EventWatch&) = delete;
    EventWatch& operator=(const EventWatch&) = delete;

    void wake();

private:
    enum class End { Gone, Late };

    void run();
    /** Stays with the service as long as there is one; whether it was lost, and not left. */
    bool follow();
    End listen();

    const OnEvent m_onEvent;
    const std::function<void()> m_onLost;
    const ServicePlace m_place;
    ServiceConnection m_connection;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isWoken = false;
    bool m_isEnding = false;
    std::thread m_thread;
};

} // namespace vlt::cloudsvr
