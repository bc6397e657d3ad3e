#pragma once

#include <QObject>
#include <QThread>

namespace vlt::cloudsvr {

/** A thread that does one thing after the other, for what must stay on one thread. */
class SerialThread
{
public:
    SerialThread()
    {
        m_context.moveToThread(&m_thread);
        m_thread.start();
    }
    /** Nobody may be waiting in `run` any more. */
    ~SerialThread()
    {
        m_thread.quit();
        m_thread.wait();
    }
    SerialThread(const SerialThread&) = delete;
    SerialThread& operator=(const SerialThread&) = delete;

    /** Runs the work on the thread and waits for its end. From any other thread. */
    template <typename Work>
    void run(Work work)
    {
        QMetaObject::invokeMethod(&m_context, std::move(work), Qt::BlockingQueuedConnection);
    }

    /** The same without waiting; what has not begun when this is destroyed never does. */
    template <typename Work>
    void post(Work work)
    {
        QMetaObject::invokeMethod(&m_context, std::move(work), Qt::QueuedConnection);
    }

private:
    QThread m_thread;
    QObject m_context;
};

} // namespace vlt::cloudsvr
