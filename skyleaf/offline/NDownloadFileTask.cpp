#include "offline/NDownloadFileTask.h"

#include "base/NClock.h"
#include "nrt/dirs.h"

#include <QFile>
#include <QMutex>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPointer>
#include <QThreadPool>
#include <QWaitCondition>

#include <optional>
#include <utility>

namespace {

constexpr int readBufferSize = 4 << 20;

} // namespace

/** Bytes on their way from the manager's thread to the writing one. */
class NDownloadFileTask::Stream
{
public:
    bool hasRoom()
    {
        const QMutexLocker locker(&m_mutex);
        return m_bytes.size() < readBufferSize;
    }
    void put(const QByteArray& bytes)
    {
        const QMutexLocker locker(&m_mutex);
        m_bytes += bytes;
        m_changed.wakeAll();
    }
    void end()
    {
        const QMutexLocker locker(&m_mutex);
        m_ended = true;
        m_changed.wakeAll();
    }
    /** Waits for bytes; none any more after the end. */
    std::optional<QByteArray> take()
    {
        const QMutexLocker locker(&m_mutex);
        while (m_bytes.isEmpty() && !m_ended)
            m_changed.wait(&m_mutex);
        if (m_bytes.isEmpty())
            return std::nullopt;
        return std::exchange(m_bytes, {});
    }

private:
    QMutex m_mutex;
    QWaitCondition m_changed;
    QByteArray m_bytes;
    bool m_ended = false;
};

/** The access manager as other threads may reach it: it can go at any time. */
class NDownloadFileTask::Source
{
public:
    explicit Source(QNetworkAccessManager* manager)
        : m_manager(manager)
    {
    }

    void forget()
    {
        const QMutexLocker locker(&m_mutex);
        m_manager = nullptr;
    }

    /** Runs on the manager's thread; dropped, and destroyed, when the manager goes first. */
    template <typename Function>
    void post(Function function)
    {
        const QMutexLocker locker(&m_mutex);
        if (QNetworkAccessManager* manager = m_manager) {
            QMetaObject::invokeMethod(
                manager, [manager, work = std::move(function)] { work(*manager); }, Qt::QueuedConnection);
        }
    }

private:
    QMutex m_mutex;
    QNetworkAccessManager* m_manager;
};

namespace {

QNetworkReply* startDownload(QNetworkAccessManager& manager, const QUrl& url)
{
    QNetworkReply* reply = manager.get(QNetworkRequest(url));
    reply->setReadBufferSize(readBufferSize);
    reply->setProperty("startTime", nclock::nowMs());
    reply->setProperty("replyName", QStringLiteral("download_file"));
    return reply;
}

} // namespace

NDownloadFileTask::NDownloadFileTask(QString path, QUrl url, QNetworkAccessManager* manager)
    : m_path(std::move(path))
    , m_url(std::move(url))
{
    if (!manager)
        return;
    m_source = std::make_shared<Source>(manager);
    connect(manager, &QObject::destroyed, manager, [source = m_source] { source->forget(); });
}

NDownloadFileTask::~NDownloadFileTask() = default;

void NDownloadFileTask::run()
{
    if (!m_source)
        return;
    QFile file(m_path);
    if (nrt::dirs::inBlackDownloadDir(m_path) || !file.open(QIODevice::WriteOnly)) {
        Q_EMIT requestFinished(false);
        return;
    }

    const auto stream = std::make_shared<Stream>();
    const auto reply = std::make_shared<QPointer<QNetworkReply>>(); // touched on the manager's thread only
    const auto pump = [reply, stream](QNetworkAccessManager&) {
        if (*reply && stream->hasRoom())
            stream->put((*reply)->readAll());
    };
    // The stream ends with the last one who could feed it: the reply, or the request that was never made.
    std::shared_ptr<void> end(nullptr, [stream](void*) { stream->end(); });
    m_source->post([url = m_url, reply, stream, pump, end = std::move(end)](QNetworkAccessManager& manager) {
        *reply = startDownload(manager, url);
        const auto pumpReply = [pump, &manager] { pump(manager); };
        QObject::connect(*reply, &QNetworkReply::downloadProgress, *reply, pumpReply);
        QObject::connect(*reply, &QNetworkReply::readyRead, *reply, pumpReply);
        QObject::connect(*reply, &QNetworkReply::finished, *reply, [reply, stream] {
            stream->put((*reply)->readAll());
            stream->end();
        });
        QObject::connect(*reply, &QObject::destroyed, *reply, [end] {});
    });

    // Waiting for the network keeps no other task of the pool from running.
    QThreadPool::globalInstance()->releaseThread();
    bool written = true;
    while (const std::optional<QByteArray> bytes = stream->take()) {
        written = file.write(*bytes) == bytes->size() && written;
        m_source->post(pump);
    }
    written = file.flush() && written;
    QThreadPool::globalInstance()->reserveThread();
    file.close();
    Q_EMIT requestFinished(written);
}
