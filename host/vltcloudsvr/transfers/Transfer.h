#pragma once

#include "vltcloudsvr/common/Transfers.h"

namespace vlt::cloudsvr {

/** A row of the queue: one file or folder, in one direction. Ids of rows count from 1. */
struct Transfer
{
    enum class Kind { Folder = 0, File = 1 };

    qint64 id = 0;
    qint64 context = 0;   //!< for whom, see TransferStore
    qint64 parentRow = 0; //!< the folder's row that comes first; 0 for none
    qint64 rootRow = 0;   //!< the folder's row that it was asked for with; 0 for itself
    TransferDirection direction = TransferDirection::Upload;
    Kind kind = Kind::File;
    TransferState state = TransferState::Queued;
    int attempts = 0; //!< that failed

    QString groupId;
    QString remoteParent; //!< folder id
    QString remoteId;     //!< of the file or folder, when there is one
    QString history;      //!< the version that is downloaded; empty for the present one
    QString name;         //!< in the drive; may be empty until a download knows it
    QString path;         //!< the source; of a download the place that was chosen for it
    QString root;         //!< of a download: the directory that nothing is written outside of
    QString below;        //!< of a download: the directories from there, joined with "/"

    qint64 size = -1;
    qint64 modified = 0; //!< ns, of the source when its SHA-1 was taken
    QString sha1;
    QString problem; //!< of a row that is added as failed
};

/** What became of a row that was worked on. */
struct TransferEnd
{
    enum class Kind {
        Finished,
        Failed,
        Later,       //!< worth another attempt
        Unreachable, //!< so is everything else of this server
        Stopped      //!< by the user
    };

    Kind kind = Kind::Finished;
    QString code;    //!< of a failure; no "/"
    QString detail;  //!< no "/"
    QString message; //!< for people
    QString remoteId;
    QString sha1;
    QString path;
    qint64 size = -1; //!< of a file that finished

    static TransferEnd failed(const QString& code, const QString& message, const QString& detail = {})
    {
        return {Kind::Failed, code, detail, message, {}, {}, {}, -1};
    }
};

inline QString taskIdOf(qint64 row)
{
    return QStringLiteral("t") + QString::number(row);
}

/** The row of a task id; 0 for a text that is none. */
inline qint64 rowOfTask(const QString& taskId)
{
    bool isNumber = false;
    const qint64 row = taskId.startsWith(u't') ? taskId.midRef(1).toLongLong(&isNumber) : 0;
    return isNumber && row > 0 ? row : 0;
}

} // namespace vlt::cloudsvr
