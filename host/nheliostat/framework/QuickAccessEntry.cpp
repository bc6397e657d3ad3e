#include "nheliostat/framework/QuickAccessEntry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QStringList>

namespace {

constexpr int longestName = 500;

const QString pinName = QStringLiteral("pinToQuickAccess");

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
        complaint = document.isNull() ? error.errorString() : QStringLiteral("it is no list");
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
        if (entries.size() == mostQuickAccessEntries) {
            complaint = QStringLiteral("only the first %1 documents are taken").arg(mostQuickAccessEntries);
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

QByteArray writeQuickAccess(const QVector<QuickAccessEntry>& entries)
{
    QJsonArray array;
    for (const QuickAccessEntry& entry : entries)
        array.append(toObject(entry));
    return QJsonDocument(QJsonObject{{QStringLiteral("entries"), array}}).toJson();
}
