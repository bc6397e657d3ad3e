#pragma once

#include <functional>
#include <memory>

/** A function to be run once on a pool thread. */
class NTask
{
public:
    explicit NTask(std::function<void()> function)
        : m_function(std::move(function))
    {
    }
    void run() const { m_function(); }

private:
    std::function<void()> m_function;
};

/** The shared services' thread pool. Any thread. */
class NThreadPool
{
public:
    /** Null before the shared services have started and after they have stopped. */
    static NThreadPool* globalInstance();

    virtual ~NThreadPool() = default;
    /** Runs the task as soon as a thread is free. A task that throws is logged and dropped. */
    virtual void submit(std::unique_ptr<NTask> task) = 0;
};
