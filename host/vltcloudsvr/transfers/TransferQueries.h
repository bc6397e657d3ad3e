#pragma once

#include "vltcloudsvr/common/Result.h"
#include "vltcloudsvr/transfers/RunningTransfers.h"
#include "vltcloudsvr/transfers/TransferDatabase.h"

namespace vlt::cloudsvr {

/**
 * The queue, as those who look at it see it; see common/Transfers.h for the layouts. A connection of its own,
 * so that looking keeps nobody from working. Used on the thread that made it.
 */
class TransferQueries
{
public:
    explicit TransferQueries(QString file);

    Result<Values> uploadStates(qint64 context, const QString& joinedPaths, const RunningTransfers& running);
    Result<Values> downloadStates(qint64 context, const QString& joinedTasks,
                                  const RunningTransfers& running);
    Result<TransferList> list(qint64 context, TransferDirection direction, int offset, int count,
                              const RunningTransfers& running);

private:
    struct FolderSums;

    /** False on an error. */
    bool addUploadState(qint64 context, const QString& path, const RunningTransfers& running, Values& values);
    /** The row of a task's id, or the folder that was asked for last under it; false on an error. */
    bool findDownload(qint64 context, const QString& task, QSqlQuery*& query);
    bool sumFolder(qint64 row, const RunningTransfers& running, FolderSums& sums);

    TransferDatabase m_database;
};

} // namespace vlt::cloudsvr
