#pragma once

#include "vltcloudsvr/common/ServicePlace.h"

#include <QElapsedTimer>
#include <QString>
#include <QStringList>

#include <functional>
#include <mutex>

namespace vlt::cloudsvr {

/** Starts the service's process. Any thread. */
class ServiceStarter
{
public:
    /** `onStarted` is called on the thread that started it. */
    ServiceStarter(QString program, ServicePlace place, std::function<void()> onStarted);

    /** Arguments for the starts from now on, beside the data directory. */
    void setArguments(const QStringList& arguments);
    /**
     * Starts the process unless it runs or was started a moment ago, and does not wait for it. False when it
     * cannot be started. The process is on its own: it outlives this one.
     */
    bool startIfAbsent();
    /** The service answers: when it is gone after that, it need not be given time to begin. */
    void noteAnswer();

private:
    const QString m_program;
    const ServicePlace m_place;
    const std::function<void()> m_onStarted;
    std::mutex m_mutex;
    QStringList m_arguments;
    QElapsedTimer m_sinceStart;
};

} // namespace vlt::cloudsvr
