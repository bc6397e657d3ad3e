#include "vltcloudsvr/client/ServiceStarter.h"

#include <QProcess>

#include <utility>

namespace vlt::cloudsvr {
namespace {

/** How long a process that has not answered yet may take until it holds the lock, before another is started.
 */
constexpr int settleMs = 1000;

} // namespace

ServiceStarter::ServiceStarter(QString program, ServicePlace place, std::function<void()> onStarted)
    : m_program(std::move(program))
    , m_place(std::move(place))
    , m_onStarted(std::move(onStarted))
{
}

void ServiceStarter::setArguments(const QStringList& arguments)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_arguments = arguments;
}

void ServiceStarter::noteAnswer()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_sinceStart.invalidate();
}

bool ServiceStarter::startIfAbsent()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const bool wasStarted = m_sinceStart.isValid() && !m_sinceStart.hasExpired(settleMs);
    if (wasStarted || isServed(m_place))
        return true;
    QProcess process;
    process.setProgram(m_program);
    process.setArguments(QStringList{QStringLiteral("--data-dir"), m_place.dataDir} + m_arguments);
    process.setWorkingDirectory(m_place.dataDir);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    if (!process.startDetached())
        return false;
    m_sinceStart.start();
    m_onStarted();
    return true;
}

} // namespace vlt::cloudsvr
