#pragma once

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

/**
 * The uploads whose order the cloud service did not take, or refused: it knows nothing of them, so they are
 * added to what it says of uploads, as failed. They are known until the same is ordered again.
 */
class LostUploads
{
public:
    struct Order
    {
        QString groupId;
        QString parentId;
        QStringList paths; //!< of files, or of one folder
    };

    /** What was lost of these before no longer counts. */
    void begin(const Order& order);
    void lose(const Order& order, const QString& message);
    void clear() { m_lost.clear(); }

    /**
     * Adds the states of those among the paths, joined with "|", that are lost, over those of earlier
     * uploads; see vltcloudsvr/common/Transfers.h.
     */
    void addStates(const QString& joinedPaths, QMap<QString, QString>& values) const;

private:
    struct Lost
    {
        QString groupId;
        QString parentId;
        QString message;
        QString path;
        QSet<QString> orderedAgain; //!< of a folder's files
    };

    const Lost* find(const QString& path) const;

    QVector<Lost> m_lost;
};
