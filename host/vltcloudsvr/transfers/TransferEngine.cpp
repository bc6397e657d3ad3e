#include "vltcloudsvr/transfers/TransferEngine.h"

#include "zeolite/NxLoggerLite.h"

#include <QCryptographicHash>
#include <QFile>

#include <algorithm>
#include <chrono>

namespace vlt::cloudsvr {
namespace {

constexpr std::size_t bufferSize = 256UL * 1024;
constexpr qint64 longestDelayMs = 30'000;
constexpr qint64 longestWaitMs = 60'000;
constexpr qint64 keptFinishedMs = 7LL * 24 * 3600 * 1000;
constexpr int tickMs = 250;
constexpr int millisecond = 1000;

const QString logTag = QStringLiteral("vltcloudsvr");

QString saltOf(const QString& file)
{
    return QString::fromLatin1(
        QCryptographicHash::hash(file.toUtf8(), QCryptographicHash::Sha1).toHex().left(8));
}

} // namespace

/** A thread, its connection and its room for bytes. */
struct TransferEngine::Worker
{
    HttpLink link;
    DriveClient drive{link};
    std::vector<char> buffer;
    std::shared_ptr<TransferProgress> progress; //!< of the row that is worked on
    std::thread thread;
};

struct TransferEngine::Run
{
    Worker* worker = nullptr;
    std::shared_ptr<TransferProgress> progress;
    qint64 rootRow = 0;
    qint64 context = 0;
    TransferDirection direction = TransferDirection::Upload;
    qint64 doneAtTick = 0;
    qint64 speed = 0;
};

TransferEngine::TransferEngine(TransferSetup setup, QObject* parent)
    : QObject(parent)
    , m_setup(std::move(setup))
    , m_salt(saltOf(m_setup.file))
{
    m_tick.setInterval(tickMs);
    connect(&m_tick, &QTimer::timeout, this, &TransferEngine::onTick);
    m_storeThread.run([this] { m_store = std::make_unique<TransferStore>(m_setup.file); });
}

TransferEngine::~TransferEngine()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isEnding = true;
        for (const auto& worker : m_workers)
            worker->link.interrupt();
    }
    m_woken.notify_all();
    for (const auto& worker : m_workers)
        worker->thread.join();
    m_storeThread.run([this] { m_store.reset(); });
}

void TransferEngine::noticeCaller(const Caller& caller)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_contexts.knows(caller))
            return;
    }
    if (!QFile::exists(m_setup.file))
        return; // there never was a transfer
    m_storeThread.post([this, caller] {
        const Result<qint64> id = m_store->contextOf(caller);
        if (!id)
            return;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_contexts.set(*id, caller);
            startWorkers();
        }
        wake();
    });
}

Result<qint64> TransferEngine::contextOf(const Caller& caller)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_contexts.knows(caller))
            return *m_contexts.idOf(caller);
    }
    const auto id = withStore([&](TransferStore& store) { return store.contextOf(caller); });
    if (id) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_contexts.set(*id, caller);
        startWorkers();
    }
    wake();
    return id;
}

void TransferEngine::startWorkers()
{
    if (!m_workers.empty() || m_isEnding)
        return;
    m_storeThread.post([this] { m_store->prune(m_setup.clock() - keptFinishedMs); });
    for (int i = 0; i < m_setup.connections; ++i) {
        m_workers.push_back(std::make_unique<Worker>());
        Worker& worker = *m_workers.back();
        worker.thread = std::thread([this, &worker] { work(worker); });
    }
}

void TransferEngine::wake()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        ++m_wakes;
    }
    m_woken.notify_all();
    if (!m_isChanged.exchange(true)) {
        const auto watch = [this] {
            if (!m_tick.isActive()) {
                m_sinceTick.start();
                m_tick.start();
            }
        };
        QMetaObject::invokeMethod(this, watch, Qt::QueuedConnection);
    }
}

void TransferEngine::work(Worker& worker)
{
    worker.buffer.resize(bufferSize);
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_isEnding) {
        const quint64 wakes = m_wakes;
        lock.unlock();
        qint64 due = 0;
        const std::optional<Transfer> row = claim(worker, due);
        if (row) {
            const TransferEnd end = perform(worker, *row, *worker.progress);
            settle(*row, end);
        }
        lock.lock();
        if (row)
            continue;
        const qint64 wait =
            due == 0 ? longestWaitMs : std::clamp<qint64>(due - m_setup.clock(), 1, longestWaitMs);
        m_woken.wait_for(lock, std::chrono::milliseconds(wait),
                         [&] { return m_isEnding || m_wakes != wakes; });
    }
}

std::optional<Transfer> TransferEngine::claim(Worker& worker, qint64& due)
{
    const std::lock_guard<std::mutex> claiming(m_claiming);
    const qint64 now = m_setup.clock();
    QVector<qint64> contexts;
    QSet<qint64> others;
    const auto isDue = [&due](qint64 time) { due = due == 0 ? time : std::min(due, time); };
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        others = m_held;
        for (const auto& [row, run] : m_runs)
            others.insert(row);
        for (const qint64 id : m_contexts.ids()) {
            if (m_contexts.pausedUntil(id) <= now)
                contexts.append(id);
            else
                isDue(m_contexts.pausedUntil(id));
        }
    }
    std::optional<Transfer> row;
    m_storeThread.run([&] {
        for (int i = 0; i < contexts.size() && !row; ++i)
            row = m_store->next(contexts[i], now, others);
        for (int i = 0; i < contexts.size() && !row; ++i) {
            if (const qint64 time = m_store->nextTime(contexts[i], now))
                isDue(time);
        }
    });
    if (!row)
        return {};
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_isEnding)
        return {};
    worker.link.resume();
    worker.progress = std::make_shared<TransferProgress>();
    worker.progress->size = row->size;
    m_runs.emplace(row->id, Run{&worker, worker.progress, row->rootRow, row->context, row->direction, 0, 0});
    return row;
}

TransferEnd TransferEngine::perform(Worker& worker, const Transfer& row, TransferProgress& progress)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const Result<Endpoint> endpoint = m_contexts.endpoint(row.context);
    lock.unlock();
    if (!endpoint)
        return TransferEnd::failed(QStringLiteral("noService"), endpoint.error().text);
    worker.link.setEndpoint(*endpoint);
    const TransferWork work{row,      worker.link,   worker.drive,      *this,
                            progress, worker.buffer, partSuffix(row.id)};
    const bool isFolder = row.kind == Transfer::Kind::Folder;
    if (row.direction == TransferDirection::Upload)
        return isFolder ? uploadFolder(work) : uploadFile(work);
    return isFolder ? downloadFolder(work) : downloadFile(work);
}

void TransferEngine::settle(const Transfer& row, TransferEnd end)
{
    using Kind = TransferEnd::Kind;
    const qint64 now = m_setup.clock();
    const qint64 later = now + delayAfter(row.attempts);
    const bool isUnreachable = end.kind == Kind::Unreachable;
    if ((isUnreachable || end.kind == Kind::Later) && row.attempts >= m_setup.retries)
        end.kind = Kind::Failed;
    if (end.kind == Kind::Failed)
        NxLoggerLite::writeWarning(
            logTag,
            QStringLiteral("transfer %1 of \"%2\" failed: %3").arg(taskIdOf(row.id), row.name, end.message));
    // A folder that was listed is settled with what is in it.
    const bool isSettled = end.kind == Kind::Finished && row.direction == TransferDirection::Download &&
                           row.kind == Transfer::Kind::Folder;
    bool isStored = true;
    if (!isSettled)
        m_storeThread.run([&] { isStored = m_store->finish(row, end, now, isUnreachable ? now : later); });
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (isUnreachable)
            m_contexts.pause(row.context, later);
        else if (end.kind == Kind::Finished)
            m_contexts.pause(row.context, 0);
        if (!isStored)
            m_held.insert(row.id);
        m_runs.erase(row.id);
    }
    wake();
}

qint64 TransferEngine::delayAfter(int attempts) const
{
    constexpr int mostDoublings = 15;
    return std::min<qint64>(longestDelayMs, qint64(m_setup.retryMs) << std::min(attempts, mostDoublings));
}

QString TransferEngine::partSuffix(qint64 row) const
{
    return QStringLiteral(".%1-%2.part").arg(m_salt).arg(row);
}

Result<int> TransferEngine::cancel(qint64 context, const QVector<qint64>& rows)
{
    const std::lock_guard<std::mutex> claiming(m_claiming);
    const auto stopped = withStore([&](TransferStore& store) { return store.cancel(context, rows); });
    if (!stopped)
        return stopped.error();
    for (const Transfer& row : *stopped) {
        std::unique_lock<std::mutex> lock(m_mutex);
        const auto run = m_runs.find(row.id);
        if (run != m_runs.end()) {
            run->second.progress->isStopped = true;
            run->second.worker->link.interrupt();
        } else if (!row.sha1.isEmpty()) {
            lock.unlock();
            removePart(row, partSuffix(row.id));
        }
    }
    return stopped->size();
}

Result<int> TransferEngine::clearFinished(qint64 context, TransferDirection direction)
{
    const auto parts =
        withStore([&](TransferStore& store) { return store.clearFinished(context, direction); });
    if (!parts)
        return parts.error();
    for (const Transfer& row : *parts)
        removePart(row, partSuffix(row.id));
    return parts->size();
}

RunningTransfers TransferEngine::running() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    RunningTransfers running;
    for (const auto& [row, run] : m_runs)
        running.insert(row, {run.rootRow, run.context, run.direction, run.progress->done, run.progress->size,
                             run.speed});
    return running;
}

bool TransferEngine::isBusy()
{
    QVector<qint64> contexts;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_runs.empty())
            return true;
        contexts = m_contexts.ids();
    }
    bool isBusy = false;
    m_storeThread.run([&] {
        isBusy = std::any_of(contexts.begin(), contexts.end(),
                             [this](qint64 context) { return m_store->hasUnfinished(context); });
    });
    return isBusy;
}

void TransferEngine::onTick()
{
    const qint64 elapsed = std::max<qint64>(1, m_sinceTick.restart());
    bool isMoving = false;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        for (auto& [row, run] : m_runs) {
            const qint64 done = run.progress->done;
            const qint64 speed = (done - run.doneAtTick) * millisecond / elapsed;
            isMoving = isMoving || done != run.doneAtTick || run.speed != 0;
            run.speed = std::max<qint64>(0, run.speed == 0 ? speed : (run.speed + speed) / 2);
            run.doneAtTick = done;
        }
    }
    const bool isChanged = m_isChanged.exchange(false);
    if (!isChanged && !isMoving && m_wasActive)
        return;
    const bool isActive = isBusy();
    if (isChanged || isMoving)
        Q_EMIT changed(isActive);
    if (!isActive) {
        m_tick.stop();
        if (m_isChanged) // meanwhile
            m_tick.start();
        else if (m_wasActive)
            Q_EMIT idle();
    }
    m_wasActive = isActive;
}

bool TransferEngine::noteSource(qint64 row, qint64 size, qint64 modified, const QString& sha1)
{
    bool isStored = false;
    m_storeThread.run([&] { isStored = m_store->noteSource(row, size, modified, sha1); });
    return isStored;
}

bool TransferEngine::notePlace(const Transfer& transfer)
{
    bool isStored = false;
    m_storeThread.run([&] { isStored = m_store->notePlace(transfer); });
    return isStored;
}

bool TransferEngine::finishListing(const Transfer& folder, const QVector<Transfer>& children)
{
    bool isStored = false;
    m_storeThread.run([&] { isStored = m_store->finishListing(folder, children, m_setup.clock()); });
    return isStored;
}

} // namespace vlt::cloudsvr
