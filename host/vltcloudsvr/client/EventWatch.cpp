#include "vltcloudsvr/client/EventWatch.h"

#include "vltcloudsvr/common/Texts.h"

#include "CloudService.h"

#include <thrift/transport/TTransportException.h>

#include <chrono>
#include <exception>
#include <utility>

namespace vlt::cloudsvr {
namespace {

using apache::thrift::transport::TTransportException;

// The service does not see that a client went while it waits: that long it keeps itself ready for nobody.
constexpr int waitMs = 5000;
constexpr int answerTimeoutMs = 15'000;
constexpr std::chrono::milliseconds retryPause(100);

} // namespace

EventWatch::EventWatch(ServicePlace place, OnEvent onEvent, std::function<void()> onLost)
    : m_onEvent(std::move(onEvent))
    , m_onLost(std::move(onLost))
    , m_place(std::move(place))
    , m_connection(m_place.socketPath)
    , m_thread([this] { run(); })
{
}

EventWatch::~EventWatch()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_all();
    m_connection.interrupt();
    m_thread.join();
}

void EventWatch::wake()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isWoken = true;
    }
    m_changed.notify_all();
}

void EventWatch::run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_isEnding || m_isWoken; });
        if (m_isEnding)
            return;
        m_isWoken = false;
        lock.unlock();
        const bool isLost = follow();
        if (isLost)
            m_onLost();
        lock.lock();
    }
}

bool EventWatch::follow()
{
    while (true) {
        const bool isConnected = m_connection.open();
        const bool isGone = isConnected ? listen() == End::Gone : !isServed(m_place);
        std::unique_lock<std::mutex> lock(m_mutex);
        if (m_isEnding || isGone)
            return !m_isEnding;
        // It is busy, or begins or ends right now.
        if (m_changed.wait_for(lock, retryPause, [this] { return m_isEnding; }))
            return false;
    }
}

EventWatch::End EventWatch::listen()
{
    qint64 lastId = 0;
    try {
        m_connection.setTimeout(answerTimeoutMs);
        while (true) {
            std::vector<rpc::ServiceEvent> events;
            m_connection.client().nextEvents(events, lastId, waitMs);
            for (const rpc::ServiceEvent& event : events) {
                lastId = event.id;
                m_onEvent(QString::fromStdString(event.name), toQt(event.values));
            }
        }
    } catch (const TTransportException& error) {
        m_connection.close();
        return error.getType() == TTransportException::TIMED_OUT ? End::Late : End::Gone;
    } catch (const std::exception&) {
        m_connection.close();
        return End::Gone;
    }
}

} // namespace vlt::cloudsvr
