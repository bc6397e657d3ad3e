#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

/** A document that the user keeps at hand. */
struct QuickAccessEntry
{
    QString fileId; //!< never empty in a list
    QString name;
    QString suffix; //!< of the file, for its icon; may be empty

    bool operator==(const QuickAccessEntry& other) const
    {
        return fileId == other.fileId && name == other.name && suffix == other.suffix;
    }
};

/**
 * The document in the command "pinToQuickAccess&activate&tab_menu&cloudFile&<separator>&<texts>", whose
 * texts, joined by the separator, are the file id, an empty one and the Base64 of the name's UTF-8. Nothing
 * for another command, without a file id, or with a broken name.
 */
std::optional<QuickAccessEntry> readPinCommand(const QString& command);
/** Whether it is such a command, well made or not. */
bool isPinCommand(const QString& command);

constexpr int mostQuickAccessEntries = 200;

/**
 * The entries of the list's file; those that make no sense, come again or are too many are left out. Nothing
 * for what is no such list. `complaint` is set when something is to be said about it.
 */
std::optional<QVector<QuickAccessEntry>> readQuickAccess(const QByteArray& text, QString& complaint);
QByteArray writeQuickAccess(const QVector<QuickAccessEntry>& entries);
