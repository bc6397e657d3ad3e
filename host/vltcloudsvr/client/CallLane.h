#pragma once

#include "vltcloudsvr/client/ServiceConnection.h"
#include "vltcloudsvr/common/Calls.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace vlt::cloudsvr {

namespace rpc {
class CallResult;
}

class ServiceStarter;

/**
 * Makes calls one after the other, on a thread and a connection of its own. Starts the service when it is not
 * there. Calls that wait while it cannot be started fail with the one that tried. A call whose service goes
 * before it answers is made once more when that is allowed, else it fails. Destroying it drops the calls that
 * are not answered, without waiting for the service.
 */
class CallLane
{
public:
    using Operation = std::function<void(rpc::CloudServiceClient&, rpc::CallResult&)>;
    using Done = std::function<void(bool success, const CallResult&)>;

    /** Whether a second call does no more than the first. */
    enum class Repeat { Never, Once };
    struct Patience
    {
        std::chrono::milliseconds answer; //!< from the moment that a call is enqueued
        std::chrono::milliseconds start;  //!< of a service that is not there
    };

    /** `onConnected` and every `Done` are called on the lane's thread. `starter` outlives it. */
    CallLane(const QString& socketPath, ServiceStarter& starter, Patience patience,
             std::function<void()> onConnected);
    ~CallLane();
    CallLane(const CallLane&) = delete;
    CallLane& operator=(const CallLane&) = delete;

    void enqueue(Operation operation, Done done, Repeat repeat = Repeat::Never);

private:
    using TimePoint = std::chrono::steady_clock::time_point;

    struct Call
    {
        Operation operation;
        Done done;
        TimePoint deadline;
        Repeat repeat;
    };

    void run();
    void failWaiting();
    void perform(Call call);
    void repeat(Call call);
    bool connect();
    /** False when the lane ends meanwhile. */
    bool pause(std::chrono::milliseconds duration);

    ServiceStarter& m_starter;
    const Patience m_patience;
    const std::function<void()> m_onConnected;
    ServiceConnection m_connection;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Call> m_calls;
    bool m_isEnding = false;
    std::thread m_thread;
};

} // namespace vlt::cloudsvr
