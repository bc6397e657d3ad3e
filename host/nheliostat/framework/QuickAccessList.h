#pragma once

#include <QObject>
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
/**
 * The entries of the list's file; those that make no sense, come again or are too many are left out. Nothing
 * for what is no such list. `complaint` is set when something is to be said about it.
 */
std::optional<QVector<QuickAccessEntry>> readQuickAccess(const QByteArray& text, QString& complaint);
/** Whether it is such a command, well made or not. */
bool isPinCommand(const QString& command);

/**
 * The documents that the user pinned, in the order of pinning, in a file that other shells of the same data
 * directory may change too; 200 at most. A damaged file is set aside ("*.corrupt") and the list starts empty;
 * entries that make no sense are left out. User-interface thread.
 */
class QuickAccessList final : public QObject
{
    Q_OBJECT
public:
    /** An empty path keeps the list in memory only. */
    explicit QuickAccessList(const QString& path, QObject* parent = nullptr);

    const QVector<QuickAccessEntry>& entries() const { return m_entries; }
    /** Takes in what other shells changed. */
    void reload();
    /** One that is pinned already keeps its place and gets the new name. */
    void pin(const QuickAccessEntry& entry);
    /** False when it is not pinned. */
    bool unpin(const QString& fileId);

Q_SIGNALS:
    void changed();

private:
    template <typename Change>
    bool change(Change change);
    QVector<QuickAccessEntry> read();
    void write() const;

    const QString m_path;
    bool m_isWritable = true; //!< false while something that is no list cannot be taken out of its place
    QString m_complaint;      //!< the last one, logged once
    QVector<QuickAccessEntry> m_entries;
};
