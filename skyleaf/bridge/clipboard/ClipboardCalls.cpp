#include "bridge/clipboard/ClipboardCalls.h"

#include <QPointer>
#include <QThreadPool>

#include <utility>

ClipboardTask::ClipboardTask(std::function<void()> work)
    : m_work(std::move(work))
{
}

void ClipboardTask::run()
{
    m_work();
    Q_EMIT finished();
}

ClipboardCalls::ClipboardCalls(Publish publish)
    : m_publish(std::move(publish))
{
}

void ClipboardCalls::take(NxWebViewJSContext& call, Begin begin)
{
    if (m_finish)
        m_waiting.push_back({call, std::move(begin)});
    else
        goOn(call, begin);
}

/** Whether the call has ended. */
bool ClipboardCalls::goOn(NxWebViewJSContext& call, const Begin& begin)
{
    const Rest rest = begin(call);
    if (!rest.work)
        return true;
    m_running = call;
    m_finish = rest.finish;
    auto* task = new ClipboardTask(rest.work);
    connect(task, &ClipboardTask::finished, this, &ClipboardCalls::end);
    QThreadPool::globalInstance()->start(task);
    return false;
}

void ClipboardCalls::end()
{
    const QPointer<ClipboardCalls> self(this); // a reply may end the page
    NxWebViewJSContext call = std::exchange(m_running, {});
    std::exchange(m_finish, nullptr)(call);
    m_publish(call);
    while (self && !m_finish && !m_waiting.empty()) {
        Waiting next = std::move(m_waiting.front());
        m_waiting.pop_front();
        if (goOn(next.call, next.begin))
            m_publish(next.call);
    }
}
