#include "vltcloudsvr/server/EventLog.h"

#include <chrono>

namespace vlt::cloudsvr {
namespace {

constexpr std::size_t eventsKept = 256;

} // namespace

void EventLog::add(const QString& name, const Values& values)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_events.push_back({++m_lastId, name, values});
        if (m_events.size() > eventsKept)
            m_events.pop_front();
    }
    m_changed.notify_all();
}

std::vector<Event> EventLog::after(qint64 sinceId, int waitMs)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait_for(lock, std::chrono::milliseconds(waitMs),
                       [&] { return m_isClosed || m_lastId > sinceId; });
    std::vector<Event> events;
    for (const Event& event : m_events) {
        if (event.id > sinceId)
            events.push_back(event);
    }
    return events;
}

void EventLog::close()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isClosed = true;
    }
    m_changed.notify_all();
}

} // namespace vlt::cloudsvr
