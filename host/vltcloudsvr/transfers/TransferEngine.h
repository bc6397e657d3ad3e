#pragma once

#include "vltcloudsvr/functions/SerialThread.h"
#include "vltcloudsvr/transfers/RunningTransfers.h"
#include "vltcloudsvr/transfers/TransferContexts.h"
#include "vltcloudsvr/transfers/TransferStore.h"
#include "vltcloudsvr/transfers/TransferWork.h"

#include <QElapsedTimer>
#include <QTimer>

#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace vlt::cloudsvr {

struct TransferSetup
{
    QString file;        //!< of the queue
    int connections = 4; //!< at a time
    int retryMs = 1000;  //!< before the first further attempt; twice as long before each next, up to 30 s
    int retries = 8;
    std::function<qint64()> clock; //!< ms since the epoch
};

/**
 * Works on the queue: several rows at a time, each on a thread and a connection of its own. A row that was
 * not finished when the process ended is worked on again as soon as its caller calls. Any thread, except
 * where it says otherwise; nobody waits in an operation when it is destroyed.
 */
class TransferEngine final : public QObject, private TransferJournal
{
    Q_OBJECT
public:
    explicit TransferEngine(TransferSetup setup, QObject* parent = nullptr);
    ~TransferEngine() override;

    /** Somebody called: what is left of theirs goes on. Cheap; does not wait. */
    void noticeCaller(const Caller& caller);
    /** The same, at once. */
    Result<qint64> contextOf(const Caller& caller);

    /** Runs `work` with the queue, on its thread, and waits. What was added then begins. */
    template <typename Work>
    auto withStore(Work work)
    {
        std::optional<decltype(work(std::declval<TransferStore&>()))> result;
        m_storeThread.run([&] { result = work(*m_store); });
        wake();
        return *std::move(result);
    }

    Result<int> cancel(qint64 context, const QVector<qint64>& rows);
    Result<int> clearFinished(qint64 context, TransferDirection direction);

    RunningTransfers running() const;
    /** Whether something is queued or running that this process may work on. */
    bool isBusy();

Q_SIGNALS:
    /** On the engine's own thread, about four times a second at most. */
    void changed(bool isActive);
    /** The last one ended; on the engine's own thread. */
    void idle();

private:
    struct Worker;
    struct Run;

    bool noteSource(qint64 row, qint64 size, qint64 modified, const QString& sha1) override;
    bool notePlace(const Transfer& transfer) override;
    bool finishListing(const Transfer& folder, const QVector<Transfer>& children) override;

    void wake();
    void onTick();
    void startWorkers();
    void work(Worker& worker);
    std::optional<Transfer> claim(Worker& worker, qint64& due);
    TransferEnd perform(Worker& worker, const Transfer& row, TransferProgress& progress);
    void settle(const Transfer& row, TransferEnd end);
    qint64 delayAfter(int attempts) const;
    QString partSuffix(qint64 row) const;

    const TransferSetup m_setup;
    const QString m_salt; //!< tells the parts of this queue from those of another
    SerialThread m_storeThread;
    std::unique_ptr<TransferStore> m_store; //!< lives on its thread, and never waits for anything

    std::mutex m_claiming;      //!< a row is claimed, or its stopping is stored; taken before `m_mutex`
    mutable std::mutex m_mutex; //!< guards what follows
    std::condition_variable m_woken;
    quint64 m_wakes = 0;
    bool m_isEnding = false;
    TransferContexts m_contexts;
    std::map<qint64, Run> m_runs; //!< by row
    QSet<qint64> m_held;          //!< rows whose end could not be stored: not tried again by this process
    std::vector<std::unique_ptr<Worker>> m_workers;

    std::atomic<bool> m_isChanged{false};
    bool m_wasActive = false; //!< on the engine's own thread
    QTimer m_tick;
    QElapsedTimer m_sinceTick;
};

} // namespace vlt::cloudsvr
