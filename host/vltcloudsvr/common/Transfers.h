#pragma once

#include "vltcloudsvr/common/Calls.h"

#include <QStringList>
#include <QVector>

/**
 * What the functions for transfers take and answer. Texts of several parts are joined with "|". A task id is
 * "t" and a number; a folder that is downloaded is also known by its folder id. `direction` is "upload" or
 * "download".
 *
 * | Function                                | Arguments                                    | Result       |
 * | "folderUpload"                          | "groupid", "parentid", "path"                | "taskid"     |
 * | "batchUploadFileListToAnyExistedPath"   | "groupid", "parentid", "paths" (JSON array), | "taskids"    |
 * |                                         | "fileid" ("" or "0": new files)              |              |
 * | "downloadDir"                           | "groupid", "folderids", "directory"          | "taskids"    |
 * | "downloadCloudFiles"                    | "fileids", "directory", "historyid" ("")     | "taskids"    |
 * | "getBatchUploadFileListState"           | argument 0: paths joined                     | see below    |
 * | "getBatchDownloadCloudFilesState"       | argument 0: task ids joined                  | "jsonConten" |
 * | "listTransfers"                         | "direction", "offset", "count"               | TransferList |
 * | "cancelTransfers", "retryTransfers"     | argument 0: task ids joined                  | "count"      |
 * | "clearFinishedTransfers"                | argument 0: direction                        | "count"      |
 * | "getRoamingMode"                        | none                                         | "roamingmode"|
 * | "changeRoamingMode": the other mode, or | argument 0: "on" or "off", may be missing    | "roamingmode"|
 *
 * The first four are orders. One with a text "requestid" that the service took before, though whoever asked
 * may not have heard of it, adds nothing and answers as it did then.
 *
 * The state of an upload, for each path P that is known: P + "_result" = "0|groupid|parentid|P|size|sha1|
 * fileid", and P = "ok/task", "uploading/percent/task", "queue/0/task", "stop/task" or
 * "fail/0/code/task/detail/message" (field 1 is not used), the message in URL-safe Base64.
 *
 * The state of downloads: "downloading", "finished" or "notask" (none of the ids is known), then "|" and
 * {"tasks": [{"taskId", "fileId", "name", "path", "size", "done", "percent", "state", "speed", "msg"}]}.
 */
namespace vlt::cloudsvr {

namespace names {

constexpr QLatin1String folderUpload{"folderUpload"};
constexpr QLatin1String uploadFiles{"batchUploadFileListToAnyExistedPath"};
constexpr QLatin1String downloadDir{"downloadDir"};
constexpr QLatin1String downloadFiles{"downloadCloudFiles"};
constexpr QLatin1String uploadStates{"getBatchUploadFileListState"};
constexpr QLatin1String downloadStates{"getBatchDownloadCloudFilesState"};
constexpr QLatin1String listTransfers{"listTransfers"};
constexpr QLatin1String cancelTransfers{"cancelTransfers"};
constexpr QLatin1String retryTransfers{"retryTransfers"};
constexpr QLatin1String clearFinishedTransfers{"clearFinishedTransfers"};
constexpr QLatin1String getRoamingMode{"getRoamingMode"};
constexpr QLatin1String changeRoamingMode{"changeRoamingMode"};
/** Event {"active": "1" or "0"}: rows or totals changed; about four a second at most. */
constexpr QLatin1String transfersChanged{"transfersChanged"};

} // namespace names

/** The key of the argument at a position, for functions that take their arguments by position. */
inline QString positionKey(int position)
{
    return QString::number(position);
}

/** The key of an order's id. */
const QString requestIdKey = QStringLiteral("requestid");

/** Whether the function adds transfers. */
bool isTransferOrder(const QString& name);

/** Whether the function is one of those above: they are answered in order, apart from all others. */
bool isTransferFunction(const QString& name);

enum class TransferDirection { Upload = 0, Download = 1 };

QString toText(TransferDirection direction);

enum class TransferState {
    Queued = 0,
    Waiting = 1, //!< for its folder
    Failed = 2,
    Stopped = 3, //!< by the user
    Finished = 4,
    Running = 5
};

/** "queued" (also while it waits for its folder), "failed", "stopped", "finished" or "running". */
QString toText(TransferState state);

/** A file that is transferred, or a folder that is made or listed. */
struct TransferRow
{
    QString id;
    QString name;
    QString path;     //!< on this machine; of a download that has not begun its directory
    qint64 size = -1; //!< bytes; -1: not known yet
    qint64 done = 0;  //!< bytes
    qint64 speed = 0; //!< bytes a second; 0 unless it runs
    TransferState state = TransferState::Queued;
    QString message; //!< of a failure, for people
    bool isFolder = false;
};

/** A page of the caller's transfers of one direction, unfinished ones first, and all of them in numbers. */
struct TransferList
{
    QVector<TransferRow> rows;
    int offset = 0; //!< of the first row
    int total = 0;  //!< rows that there are
    int active = 0; //!< running, queued or waiting
    int failed = 0; //!< or stopped
    int finished = 0;
    qint64 size = 0;  //!< bytes of all files whose size is known
    qint64 done = 0;  //!< bytes
    qint64 speed = 0; //!< bytes a second

    Values toValues() const;
    /** Members that are missing or of a wrong kind keep their defaults. */
    static TransferList fromValues(const Values& values);
};

/** The most rows of a page. */
constexpr int largestTransferPage = 500;

} // namespace vlt::cloudsvr
