#include "nheliostat/framework/WorkAreaStore.h"

#include "nrt/files.h"
#include "zeolite/NxLoggerLite.h"

#include <QDir>
#include <QFile>
#include <QRunnable>
#include <QUuid>

#include <cstdio>
#include <utility>

namespace {

const QString logTag = QStringLiteral("nheliostat");

constexpr qint64 largestRecord = 16LL << 20; //!< bytes

QString lockPathOf(const QString& path)
{
    return path + QStringLiteral(".lock");
}

void writeNow(const QString& path, const QByteArray& text)
{
    const QString failure = nrt::files::replace(path, text);
    if (!failure.isEmpty())
        NxLoggerLite::writeError(
            logTag, QStringLiteral("the work area cannot be written to %1: %2").arg(path, failure));
}

class Write final : public QRunnable
{
public:
    Write(QString path, QByteArray text)
        : m_path(std::move(path))
        , m_text(std::move(text))
    {
    }
    void run() override
    {
        if (m_text.isEmpty())
            QFile::remove(m_path);
        else
            writeNow(m_path, m_text);
    }

private:
    const QString m_path;
    const QByteArray m_text;
};

} // namespace

WorkAreaStore::WorkAreaStore(const QString& directory)
    : m_directory(directory)
{
    m_writer.setMaxThreadCount(1);
    if (directory.isEmpty())
        return;
    if (!QDir().mkpath(directory)) {
        NxLoggerLite::writeError(logTag, QStringLiteral("the directory %1 cannot be made").arg(directory));
        return;
    }
    const QString path =
        QDir(directory).filePath(QUuid::createUuid().toString(QUuid::Id128)) + QStringLiteral(".json");
    m_lock = std::make_unique<nrt::FileLock>(lockPathOf(path), 0);
    if (m_lock->isLocked())
        m_path = path;
}

WorkAreaStore::~WorkAreaStore()
{
    waitUntilWritten();
}

void WorkAreaStore::write(const WorkAreaRecord& record)
{
    const QByteArray text = record.count() > 0 ? record.toJson() : QByteArray();
    if (m_path.isEmpty() || text == m_lastWritten)
        return;
    m_lastWritten = text;
    m_writer.clear();
    m_writer.start(new Write(m_path, text));
}

void WorkAreaStore::waitUntilWritten()
{
    m_writer.waitForDone();
}

void WorkAreaStore::clear()
{
    if (m_path.isEmpty())
        return;
    m_writer.clear();
    waitUntilWritten();
    remove(std::exchange(m_path, {}));
    m_lock.reset();
}

void WorkAreaStore::remove(const QString& path)
{
    QFile::remove(path);
    QFile::remove(lockPathOf(path));
}

const WorkAreaRecord& WorkAreaStore::abandoned()
{
    if (!std::exchange(m_hasReadAbandoned, true))
        readAbandoned();
    return m_record;
}

void WorkAreaStore::readAbandoned()
{
    if (m_directory.isEmpty())
        return;
    const QFileInfoList files =
        QDir(m_directory).entryInfoList({QStringLiteral("*.json")}, QDir::Files, QDir::Time | QDir::Reversed);
    for (const QFileInfo& file : files) {
        const QString path = file.filePath();
        if (path == m_path)
            continue;
        auto lock = std::make_unique<nrt::FileLock>(lockPathOf(path), 0);
        if (!lock->isLocked())
            continue;
        m_abandoned.push_back({path, std::move(lock)});
        readFile(path);
    }
    removeLocksWithoutRecord();
}

void WorkAreaStore::removeLocksWithoutRecord() const
{
    const QStringList locks = QDir(m_directory).entryList({QStringLiteral("*.lock")}, QDir::Files);
    for (const QString& name : locks) {
        const QString path = QDir(m_directory).filePath(name);
        const QString record = path.chopped(lockPathOf({}).size());
        if (record != m_path && !QFile::exists(record) && nrt::FileLock(path, 0).isLocked())
            QFile::remove(path);
    }
}

void WorkAreaStore::readFile(const QString& path)
{
    const nrt::files::Reading file = nrt::files::read(path, largestRecord);
    const WorkAreaRecord::Reading reading =
        file ? WorkAreaRecord::fromJson(file.bytes)
             : WorkAreaRecord::Reading{{}, {QStringLiteral("it cannot be read: ") + file.reason}};
    for (const QString& complaint : reading.complaints)
        NxLoggerLite::writeWarning(logTag, QStringLiteral("work area record %1: %2").arg(path, complaint));
    m_record.windows += reading.record.windows;
    if (reading.record.count() > 0)
        return;
    if (!reading.complaints.isEmpty()) {
        const QString aside = QDir(m_directory).filePath(QStringLiteral("unreadable.corrupt"));
        std::rename(QFile::encodeName(path).constData(), QFile::encodeName(aside).constData());
    }
    remove(path);
    m_abandoned.pop_back();
}

void WorkAreaStore::forgetAbandoned()
{
    for (const Abandoned& each : std::exchange(m_abandoned, {}))
        remove(each.path);
    m_record = {};
}
