#include "zeolite/services/PoolThreads.h"

#include <atomic>
#include <exception>

#include "zeolite/NxLoggerLite.h"

namespace {

std::atomic<NThreadPool*> currentPool{nullptr};

void logFailure(const QString& reason)
{
    NxLoggerLite::writeError(
        QStringLiteral("zeolite"),
        QStringLiteral("task failed: %1--%2").arg(reason, QLatin1String("PoolThreads::submit")));
}

void runLogged(const NTask& task)
{
    try {
        task.run();
    } catch (const std::exception& error) {
        logFailure(QString::fromLocal8Bit(error.what()));
    } catch (...) {
        logFailure(QStringLiteral("unknown exception"));
    }
}

} // namespace

NThreadPool* NThreadPool::globalInstance()
{
    return currentPool;
}

PoolThreads::PoolThreads()
{
    currentPool = this;
}

PoolThreads::~PoolThreads()
{
    currentPool = nullptr;
    m_pool.waitForDone();
    const std::lock_guard<std::mutex> lock(m_mutex); // after the last thread's use of the queue
}

void PoolThreads::submit(std::unique_ptr<NTask> task)
{
    if (!task)
        return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_waiting.push_back(std::move(task));
    }
    m_pool.start(&m_runNext);
}

std::unique_ptr<NTask> PoolThreads::takeNext()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::unique_ptr<NTask> task = std::move(m_waiting.front());
    m_waiting.pop_front();
    return task;
}

void PoolThreads::RunNext::run()
{
    const std::unique_ptr<NTask> task = m_pool.takeNext();
    runLogged(*task);
}
