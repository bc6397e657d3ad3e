#include "nheliostat/framework/QuickAccessList.h"

#include "nrt/FileLock.h"
#include "zeolite/NxLoggerLite.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <algorithm>

namespace {

constexpr int lockTimeoutMs = 500;
constexpr int longestName = 500;

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

QVector<QuickAccessEntry> toEntries(const QJsonArray& array)
{
    QVector<QuickAccessEntry> entries;
    for (const QJsonValue& each : array) {
        const QJsonObject object = each.toObject();
        const QuickAccessEntry entry{object.value(QLatin1String("fileId")).toString(),
                                     object.value(QLatin1String("name")).toString().left(longestName),
                                     object.value(QLatin1String("suffix")).toString()};
        if (!entry.fileId.isEmpty() && find(entries, entry.fileId) == entries.end())
            entries.append(entry);
    }
    return entries;
}

} // namespace

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

QVector<QuickAccessEntry> QuickAccessList::read() const
{
    QFile file(m_path);
    if (m_path.isEmpty() || !file.exists())
        return {};
    QJsonParseError error{0, QJsonParseError::NoError};
    QJsonDocument document;
    const bool isRead = file.open(QIODevice::ReadOnly);
    if (isRead)
        document = QJsonDocument::fromJson(file.readAll(), &error);
    file.close();
    if (isRead && error.error == QJsonParseError::NoError && document.isObject())
        return toEntries(document.object().value(QLatin1String("entries")).toArray());

    const QString aside = m_path + QStringLiteral(".corrupt");
    NxLoggerLite::writeWarning(logTag,
                               QStringLiteral("the quick access list %1 cannot be read (%2), it is set aside")
                                   .arg(m_path, isRead ? error.errorString() : file.errorString()));
    QFile::remove(aside);
    QFile::rename(m_path, aside);
    return {};
}

void QuickAccessList::write() const
{
    QJsonArray entries;
    for (const QuickAccessEntry& entry : m_entries)
        entries.append(toObject(entry));
    const QByteArray text = QJsonDocument(QJsonObject{{QStringLiteral("entries"), entries}}).toJson();
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit())
        NxLoggerLite::writeError(logTag, QStringLiteral("the quick access list cannot be written to %1: %2")
                                             .arg(m_path, file.errorString()));
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
        if (known != entries.end() && *known == entry)
            return false;
        if (known == entries.end())
            entries.append(entry);
        else
            *known = entry;
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
