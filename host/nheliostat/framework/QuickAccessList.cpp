#include "nheliostat/framework/QuickAccessList.h"

#include "nrt/FileLock.h"
#include "nrt/files.h"
#include "zeolite/NxLoggerLite.h"

#include <algorithm>

namespace {

constexpr int lockTimeoutMs = 500;
constexpr qint64 largestFile = 4LL << 20; //!< bytes

const QString logTag = QStringLiteral("nheliostat");

QVector<QuickAccessEntry>::iterator find(QVector<QuickAccessEntry>& entries, const QString& fileId)
{
    return std::find_if(entries.begin(), entries.end(),
                        [&fileId](const QuickAccessEntry& each) { return each.fileId == fileId; });
}

} // namespace

QuickAccessList::QuickAccessList(const QString& path, QObject* parent)
    : QObject(parent)
    , m_path(path)
{
    m_entries = read();
}

QVector<QuickAccessEntry> QuickAccessList::read()
{
    using nrt::files::Fault;
    m_isWritable = true;
    const nrt::files::Reading file = m_path.isEmpty() ? nrt::files::Reading{{}, Fault::Missing, {}}
                                                      : nrt::files::read(m_path, largestFile);
    if (file.fault == Fault::Missing)
        return {};
    QString complaint = file.reason;
    const auto entries = file ? readQuickAccess(file.bytes, complaint) : std::nullopt;
    if (!complaint.isEmpty() && complaint != m_complaint)
        NxLoggerLite::writeWarning(logTag, QStringLiteral("quick access list %1: %2").arg(m_path, complaint));
    m_complaint = complaint;
    if (entries)
        return *entries;

    const QString aside = nrt::files::setAside(m_path);
    m_isWritable = !aside.isEmpty();
    NxLoggerLite::writeWarning(logTag, m_isWritable
                                           ? QStringLiteral("quick access list: set aside as %1").arg(aside)
                                           : QStringLiteral("quick access list: it cannot be set aside"));
    return {};
}

void QuickAccessList::write() const
{
    const QString failure = m_isWritable ? nrt::files::replace(m_path, writeQuickAccess(m_entries))
                                         : QStringLiteral("what is there stays");
    if (!failure.isEmpty())
        NxLoggerLite::writeError(
            logTag, QStringLiteral("the quick access list cannot be written to %1: %2").arg(m_path, failure));
}

void QuickAccessList::reload()
{
    if (m_path.isEmpty())
        return;
    const QVector<QuickAccessEntry> entries = read();
    if (entries == m_entries)
        return;
    m_entries = entries;
    Q_EMIT changed();
}

template <typename Change>
bool QuickAccessList::change(Change change)
{
    if (m_path.isEmpty()) {
        if (!change(m_entries))
            return false;
    } else {
        const nrt::FileLock lock(m_path + QStringLiteral(".lock"), lockTimeoutMs);
        m_entries = read();
        if (!change(m_entries))
            return false;
        write();
    }
    Q_EMIT changed();
    return true;
}

void QuickAccessList::pin(const QuickAccessEntry& entry)
{
    if (entry.fileId.isEmpty())
        return;
    change([&entry](QVector<QuickAccessEntry>& entries) {
        const auto known = find(entries, entry.fileId);
        if (known != entries.end()) {
            if (*known == entry)
                return false;
            *known = entry;
            return true;
        }
        if (entries.size() >= mostQuickAccessEntries) {
            NxLoggerLite::writeWarning(
                logTag,
                QStringLiteral("not pinned: quick access holds %1 documents").arg(mostQuickAccessEntries));
            return false;
        }
        entries.append(entry);
        return true;
    });
}

bool QuickAccessList::unpin(const QString& fileId)
{
    return change([&fileId](QVector<QuickAccessEntry>& entries) {
        const auto known = find(entries, fileId);
        if (known == entries.end())
            return false;
        entries.erase(known);
        return true;
    });
}
