#include "vltcloudsvr/client/CallLane.h"

#include "vltcloudsvr/client/ServiceStarter.h"
#include "vltcloudsvr/common/Texts.h"

#include "CloudService.h"

#include <exception>
#include <utility>

namespace vlt::cloudsvr {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds connectPause(10);

} // namespace

CallLane::CallLane(const QString& socketPath, ServiceStarter& starter, Patience patience,
                   std::function<void()> onConnected)
    : m_starter(starter)
    , m_patience(patience)
    , m_onConnected(std::move(onConnected))
    , m_connection(socketPath)
    , m_thread([this] { run(); })
{
}

CallLane::~CallLane()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_all();
    m_connection.interrupt();
    m_thread.join();
}

void CallLane::enqueue(Operation operation, Done done, Repeat repeat)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_calls.push_back({std::move(operation), std::move(done), Clock::now() + m_patience.answer, repeat});
    }
    m_changed.notify_all();
}

void CallLane::run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_isEnding || !m_calls.empty(); });
        if (m_isEnding)
            return;
        lock.unlock();
        const bool isConnected = connect();
        lock.lock();
        if (m_isEnding)
            return;
        if (!isConnected) {
            lock.unlock();
            failWaiting();
            lock.lock();
            continue;
        }
        Call call = std::move(m_calls.front());
        m_calls.pop_front();
        lock.unlock();
        perform(std::move(call));
        lock.lock();
    }
}

void CallLane::failWaiting()
{
    std::deque<Call> failed;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        failed.swap(m_calls);
    }
    for (const Call& call : failed)
        call.done(false, {});
}

void CallLane::perform(Call call)
{
    const auto left = std::chrono::duration_cast<milliseconds>(call.deadline - Clock::now());
    if (left.count() <= 0) { // it waited behind calls that took too long
        call.done(false, {});
        return;
    }
    rpc::CallResult answer;
    try {
        m_connection.setTimeout(static_cast<int>(left.count()));
        call.operation(m_connection.client(), answer);
    } catch (const std::exception&) {
        m_connection.close();
        if (call.repeat == Repeat::Once)
            repeat(std::move(call));
        else
            call.done(false, {});
        return;
    }
    call.done(true, {static_cast<ResultCode>(answer.code), toQt(answer.values)});
}

/** It stays before those that came after it; its deadline stays as well. */
void CallLane::repeat(Call call)
{
    call.repeat = Repeat::Never;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_calls.push_front(std::move(call));
}

bool CallLane::connect()
{
    if (m_connection.isUsable())
        return true;
    const auto deadline = Clock::now() + m_patience.start;
    do {
        if (m_connection.open()) {
            m_starter.noteAnswer();
            m_onConnected();
            return true;
        }
        if (!m_starter.startIfAbsent())
            return false;
    } while (pause(connectPause) && Clock::now() < deadline);
    return false;
}

bool CallLane::pause(milliseconds duration)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    return !m_changed.wait_for(lock, duration, [this] { return m_isEnding; });
}

} // namespace vlt::cloudsvr
