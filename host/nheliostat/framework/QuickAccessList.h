#pragma once

#include "nheliostat/framework/QuickAccessEntry.h"

#include <QObject>
#include <QString>
#include <QVector>

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
