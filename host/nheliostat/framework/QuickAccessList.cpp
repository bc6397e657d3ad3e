#include "nheliostat/framework/QuickAccessList.h"

#include "nrt/FileLock.h"
#include "nrt/files.h"
#include "zeolite/NxLoggerLite.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <algorithm>

namespace {

constexpr int lockTimeoutMs = 500;
constexpr int longestName = 500;
constexpr int mostEntries = 200;
constexpr qint64 largestFile = 4LL << 20; //!< bytes

const QString pinName = QStringLiteral("pinToQuickAccess");
const QString logTag = QStringLiteral("nheliostat");

QVector<QuickAccessEntry>::iterator find(QVector<QuickAccessEntry>& entries, const QString& fileId)
{
    return std::find_if(entries.begin(), entries.end(),
                        [&fileId](const QuickAccessEntry& each) { return each.fileId == fileId; });
}

QJsonObject toObject(const QuickAccessEntry& entry)
{
    return {{QStringLiteral("fileId"), entry.fileId},
            {QStringLiteral("name"), entry.name},
            {QStringLiteral("suffix"), entry.suffix}};
}

} // namespace

std::optional<QVector<QuickAccessEntry>> readQuickAccess(const QByteArray& text, QString& complaint)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        complaint = error.errorString();
        return std::nullopt;
    }
    QVector<QuickAccessEntry> entries;
    QSet<QString> fileIds;
    const QJsonArray array = document.object().value(QLatin1String("entries")).toArray();
    for (const QJsonValue& each : array) {
        const QJsonObject object = each.toObject();
        const QuickAccessEntry entry{object.value(QLatin1String("fileId")).toString(),
                                     object.value(QLatin1String("name")).toString().left(longestName),
                                     object.value(QLatin1String("suffix")).toString()};
        if (entry.fileId.isEmpty() || fileIds.contains(entry.fileId))
            continue;
        if (entries.size() == mostEntries) {
            complaint = QStringLiteral("only the first %1 documents are taken").arg(mostEntries);
            break;
        }
        fileIds.insert(entry.fileId);
        entries.append(entry);
    }
    return entries;
}

bool isPinCommand(const QString& command)
{
    return command.section(u'&', 0, 0) == pinName;
}

std::optional<QuickAccessEntry> readPinCommand(const QString& command)
{
    constexpr int separatorAt = 4;
    const QStringList expected{pinName, QStringLiteral("activate"), QStringLiteral("tab_menu"),
                               QStringLiteral("cloudFile")};
    const QStringList parts = command.split(u'&');
    const QString separator = parts.value(separatorAt);
    if (parts.mid(0, separatorAt) != expected || separator.isEmpty())
        return std::nullopt;
    // A file id may hold the character that parts the arguments.
    const QStringList texts = parts.mid(separatorAt + 1).join(u'&').split(separator);
    constexpr int textCount = 3;
    if (texts.size() != textCount || texts.first().isEmpty())
        return std::nullopt;
    const auto name =
        QByteArray::fromBase64Encoding(texts.last().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (name.decodingStatus != QByteArray::Base64DecodingStatus::Ok)
        return std::nullopt;
    return QuickAccessEntry{texts.first(), QString::fromUtf8(name.decoded).left(longestName), {}};
}

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
    QJsonArray entries;
    for (const QuickAccessEntry& entry : m_entries)
        entries.append(toObject(entry));
    const QByteArray text = QJsonDocument(QJsonObject{{QStringLiteral("entries"), entries}}).toJson();
    const QString failure =
        m_isWritable ? nrt::files::replace(m_path, text) : QStringLiteral("what is there stays");
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
        if (entries.size() >= mostEntries) {
            NxLoggerLite::writeWarning(
                logTag, QStringLiteral("not pinned: quick access holds %1 documents").arg(mostEntries));
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
