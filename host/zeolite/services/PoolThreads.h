#pragma once

#include "zeolite/NThreadPool.h"

#include <QRunnable>
#include <QThreadPool>

#include <deque>
#include <mutex>

/** The thread pool behind NThreadPool::globalInstance(); one at a time. Destruction finishes what was
 * submitted. */
class PoolThreads final : public NThreadPool
{
public:
    PoolThreads();
    ~PoolThreads() override;

    void submit(std::unique_ptr<NTask> task) override;

private:
    /** Runs the oldest task that waits; started once for each. */
    class RunNext final : public QRunnable
    {
    public:
        explicit RunNext(PoolThreads& pool)
            : m_pool(pool)
        {
            setAutoDelete(false);
        }
        void run() override;

    private:
        PoolThreads& m_pool;
    };

    std::unique_ptr<NTask> takeNext();

    // The tasks wait here and not in the Qt pool, so that their way to the thread is visible to the thread
    // sanitizer.
    std::mutex m_mutex;
    std::deque<std::unique_ptr<NTask>> m_waiting;
    RunNext m_runNext{*this};
    QThreadPool m_pool;
};
