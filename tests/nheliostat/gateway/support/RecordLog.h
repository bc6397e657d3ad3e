#pragma once

#include "gateway/RequestGateway.h"

#include <condition_variable>
#include <mutex>
#include <vector>

/** Keeps what a gateway reports. */
class RecordLog
{
public:
    std::function<void(const GatewayRequestRecord&)> observer()
    {
        return [this](const GatewayRequestRecord& record) {
            const std::lock_guard lock(m_mutex);
            m_records.push_back(record);
            m_changed.notify_all();
        };
    }
    /** Waits until there are `count` records and returns them. */
    std::vector<GatewayRequestRecord> take(std::size_t count)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_records.size() >= count; });
        return m_records;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<GatewayRequestRecord> m_records;
};
