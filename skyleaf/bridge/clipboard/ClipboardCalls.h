#pragma once

#include "zeolite/NxWebViewJSContext.h"

#include <QObject>
#include <QRunnable>

#include <deque>
#include <functional>

/** Runs a function on a pool thread, which deletes the task afterwards. */
class ClipboardTask final : public QObject, public QRunnable
{
    Q_OBJECT
public:
    explicit ClipboardTask(std::function<void()> work);
    void run() override;

Q_SIGNALS:
    void finished();

private:
    const std::function<void()> m_work;
};

/**
 * The clipboard calls of one page, in order: a call begins when those before it have ended, so that it finds
 * what they placed. Most end at once. User-interface thread.
 */
class ClipboardCalls final : public QObject
{
    Q_OBJECT
public:
    /** What is left of a call that has begun; nothing, or work for another thread and what follows it here.
     */
    struct Rest
    {
        std::function<void()> work;
        std::function<void(NxWebViewJSContext& call)> finish; //!< completes the reply
    };
    using Begin = std::function<Rest(NxWebViewJSContext& call)>;
    using Publish = std::function<void(const NxWebViewJSContext& call)>;

    /** `publish` delivers the replies of calls that have returned without one. */
    explicit ClipboardCalls(Publish publish);

    /** Begins the call, now or later. What is in `call` when this returns is its reply; nothing: it comes
     * later. */
    void take(NxWebViewJSContext& call, Begin begin);

private:
    struct Waiting
    {
        NxWebViewJSContext call;
        Begin begin;
    };

    bool goOn(NxWebViewJSContext& call, const Begin& begin);
    void end();

    const Publish m_publish;
    std::deque<Waiting> m_waiting;
    NxWebViewJSContext m_running;
    std::function<void(NxWebViewJSContext&)> m_finish; //!< of the running call; empty when none runs
};
