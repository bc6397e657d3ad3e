#pragma once

#include "vltcloudsvr/common/Result.h"
#include "vltcloudsvr/transfers/Transfer.h"
#include "vltcloudsvr/transfers/TransferDatabase.h"

#include <QSet>

#include <optional>

namespace vlt::cloudsvr {

/**
 * The queue, as those who work on it see it. A row belongs to a context: a user and the documents service
 * that they use. A row that is being worked on is stored as queued, so that a process that is killed leaves
 * it for the next one. Used on the thread that made it; errors are texts for people.
 */
class TransferStore
{
public:
    explicit TransferStore(QString file);

    Result<qint64> contextOf(const Caller& caller);

    /** All of what `add` adds between these two, or, unless it is committed, nothing. */
    bool begin() { return m_database.begin(); }
    bool commit() { return m_database.commit(); }
    void rollBack() { m_database.rollBack(); }
    /** Answers the row; 0 on an error. A file's upload that is there and not finished is not added again. */
    qint64 add(const Transfer& transfer);
    /** What an order with this id was answered, if it was taken; an empty id is of no order. */
    std::optional<QString> orderAnswer(qint64 context, const QString& requestId);
    /** Belongs between the two above. The latest orders are kept, many more than can be repeated. */
    bool noteOrder(qint64 context, const QString& requestId, const QString& answer);
    const QString& error() const { return m_database.error(); }

    /** Folders before files, each in the order of adding; none of the rows in `others`. */
    std::optional<Transfer> next(qint64 context, qint64 now, const QSet<qint64>& others);
    /** When a row becomes due that is not yet, in ms since the epoch; 0 when there is none. */
    qint64 nextTime(qint64 context, qint64 now);
    bool hasUnfinished(qint64 context);

    /** What an upload found out of its source. */
    bool noteSource(qint64 row, qint64 size, qint64 modified, const QString& sha1);
    /** What a download found out, and where it is going to be. */
    bool notePlace(const Transfer& transfer);
    /** The row's end. What is in an uploaded folder begins, or fails with it. `notBefore`: of another
     * attempt. */
    bool finish(const Transfer& transfer, const TransferEnd& end, qint64 now, qint64 notBefore);
    /** A folder's download ends with the rows of what is in it. */
    bool finishListing(const Transfer& folder, const QVector<Transfer>& children, qint64 now);

    /** The unfinished ones among the rows and what is in them are stopped; answers the files. */
    Result<QVector<Transfer>> cancel(qint64 context, const QVector<qint64>& rows);
    /** The failed and stopped ones are queued again, with the folders that they need. Answers how many. */
    Result<int> retry(qint64 context, const QVector<qint64>& rows);
    /** Forgets all that is over; answers the downloads that left a part of a file. */
    Result<QVector<Transfer>> clearFinished(qint64 context, TransferDirection direction);
    /** Forgets what finished before that time. */
    void prune(qint64 endedBefore);

    Result<QString> setting(const QString& userId, const QString& name, const QString& standard);
    bool setSetting(const QString& userId, const QString& name, const QString& value);

private:
    bool endTree(qint64 row, const TransferEnd& end, qint64 now);
    bool settleFolder(const Transfer& folder, const TransferEnd& end, qint64 now);
    std::optional<int> requeue(qint64 context, qint64 row);

    TransferDatabase m_database;
};

/** The columns that `readTransfer` reads, in its order. */
#define VLT_TRANSFER_COLUMNS                                                                                 \
    "id, context, parent_row, root_row, direction, kind, state, attempts, group_id, remote_parent, "         \
    "remote_id, history, name, path, root, below, size, modified, sha1"
Transfer readTransfer(const QSqlQuery& query);

} // namespace vlt::cloudsvr
