#pragma once

#include "vltcloudsvr/common/Calls.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

namespace vlt::cloudsvr {

struct Event
{
    qint64 id = 0; //!< counts from 1
    QString name;
    Values values;
};

/** What happened in the service, for clients that wait for it. Keeps the last events. Any thread. */
class EventLog
{
public:
    void add(const QString& name, const Values& values);
    /** The events after `sinceId`; waits up to `waitMs` for one. Empty when nothing happened or at `close`.
     */
    std::vector<Event> after(qint64 sinceId, int waitMs);
    /** Nobody waits any more. */
    void close();

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Event> m_events;
    qint64 m_lastId = 0;
    bool m_isClosed = false;
};

} // namespace vlt::cloudsvr
