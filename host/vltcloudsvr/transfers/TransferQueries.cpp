#include "vltcloudsvr/transfers/TransferQueries.h"

#include "vltcloudsvr/transfers/StateTexts.h"

#include <utility>

namespace vlt::cloudsvr {
namespace {

/** What is true of a row that is being worked on. */
void addRunning(qint64 row, const RunningTransfers& running, TransferState& state, qint64& done, qint64& size,
                qint64& speed)
{
    const auto found = running.constFind(row);
    if (found == running.constEnd() || state != TransferState::Queued)
        return;
    state = TransferState::Running;
    done = found->done;
    speed = found->speed;
    if (found->size >= 0)
        size = found->size;
}

void appendTask(QString& json, const QString& task, const QString& fileId, const TransferRow& row)
{
    const auto number = [&json](const char* key, qint64 value) {
        json += QLatin1String(key) + QString::number(value);
    };
    if (!json.endsWith(u'['))
        json += u',';
    json += QStringLiteral("{\"taskId\":");
    appendJsonText(json, task);
    json += QStringLiteral(",\"fileId\":");
    appendJsonText(json, fileId);
    json += QStringLiteral(",\"name\":");
    appendJsonText(json, row.name);
    json += QStringLiteral(",\"path\":");
    appendJsonText(json, row.path);
    number(",\"size\":", row.size);
    number(",\"done\":", row.done);
    number(",\"percent\":",
           row.state == TransferState::Finished ? percentOf(1, 1) : percentOf(row.done, row.size));
    json += QStringLiteral(",\"state\":\"") + toText(row.state);
    number("\",\"speed\":", row.speed);
    json += QStringLiteral(",\"msg\":");
    appendJsonText(json, row.message);
    json += u'}';
}

} // namespace

struct TransferQueries::FolderSums
{
    qint64 size = 0;
    qint64 done = 0;
    qint64 speed = 0;
    int unfinished = 0;
    int failed = 0;
    int stopped = 0;
};

TransferQueries::TransferQueries(QString file)
    : m_database(std::move(file))
{
}

Result<Values> TransferQueries::uploadStates(qint64 context, const QString& joinedPaths,
                                             const RunningTransfers& running)
{
    Values values;
    if (!m_database.run("BEGIN")) // one look at the file for all of them
        return Error{m_database.error()};
    bool isWell = true;
    int from = 0;
    while (isWell && from <= joinedPaths.size()) {
        const int bar = joinedPaths.indexOf(u'|', from);
        const int to = bar < 0 ? joinedPaths.size() : bar;
        if (to > from)
            isWell = addUploadState(context, joinedPaths.mid(from, to - from), running, values);
        from = to + 1;
    }
    const QString error = m_database.error();
    m_database.rollBack();
    return isWell ? Result<Values>(values) : Result<Values>(Error{error});
}

bool TransferQueries::addUploadState(qint64 context, const QString& path, const RunningTransfers& running,
                                     Values& values)
{
    QSqlQuery* query = m_database.run(
        "SELECT id, state, group_id, remote_parent, size, sha1, remote_id, code, detail, message FROM "
        "transfers WHERE direction = 0 AND kind = 1 AND context = ? AND path = ? ORDER BY id DESC LIMIT 1",
        {context, path});
    if (!query)
        return false;
    if (!query->next())
        return true;
    const auto text = [query](int column) { return query->value(column).toString(); };
    const qint64 row = query->value(0).toLongLong();
    auto state = TransferState(query->value(1).toInt());
    qint64 size = query->value(4).toLongLong();
    qint64 done = 0;
    qint64 speed = 0;
    addRunning(row, running, state, done, size, speed);
    // Of a version that replaces a file the id was known before; it counts once it is there.
    const bool isFinished = state == TransferState::Finished;
    values.insert(path + QStringLiteral("_result"), QStringLiteral("0|") + text(2) + u'|' + text(3) + u'|' +
                                                        path + u'|' + QString::number(size < 0 ? 0 : size) +
                                                        u'|' + text(5) + u'|' +
                                                        (isFinished ? text(6) : QString()));
    values.insert(path,
                  uploadStateText({state, percentOf(done, size), taskIdOf(row), text(7), text(8), text(9)}));
    query->finish();
    return true;
}

bool TransferQueries::findDownload(qint64 context, const QString& task, QSqlQuery*& query)
{
#define VLT_DOWNLOAD_COLUMNS                                                                                 \
    "SELECT id, state, remote_id, name, path, size, message, kind, code FROM transfers "
    const qint64 row = rowOfTask(task);
    query = row > 0
                ? m_database.run(VLT_DOWNLOAD_COLUMNS "WHERE id = ? AND context = ? AND direction = 1",
                                 {row, context})
                : m_database.run(VLT_DOWNLOAD_COLUMNS "WHERE direction = 1 AND kind = 0 AND context = ? AND "
                                                      "remote_id = ? AND root_row = 0 ORDER BY id DESC "
                                                      "LIMIT 1",
                                 {context, task});
    return query != nullptr;
}

bool TransferQueries::sumFolder(qint64 row, const RunningTransfers& running, FolderSums& sums)
{
    QSqlQuery* query = m_database.run("SELECT state, COUNT(*), SUM(CASE WHEN kind = 1 AND size > 0 THEN size "
                                      "ELSE 0 END) FROM transfers WHERE root_row = ? GROUP BY state",
                                      {row});
    while (query && query->next()) {
        const auto state = TransferState(query->value(0).toInt());
        const int count = query->value(1).toInt();
        sums.size += query->value(2).toLongLong();
        if (state == TransferState::Finished)
            sums.done += query->value(2).toLongLong();
        else if (state == TransferState::Failed)
            sums.failed += count;
        else if (state == TransferState::Stopped)
            sums.stopped += count;
        else
            sums.unfinished += count;
    }
    for (const RunningTransfer& transfer : running) {
        if (transfer.rootRow == row) {
            sums.done += transfer.done;
            sums.speed += transfer.speed;
        }
    }
    return query != nullptr;
}

Result<Values> TransferQueries::downloadStates(qint64 context, const QString& joinedTasks,
                                               const RunningTransfers& running)
{
    int known = 0;
    int unfinished = 0;
    QString json = QStringLiteral("{\"tasks\":[");
    for (const QString& task : joinedTasks.split(u'|', Qt::SkipEmptyParts)) {
        QSqlQuery* query = nullptr;
        if (!findDownload(context, task, query))
            return Error{m_database.error()};
        if (!query->next())
            continue;
        ++known;
        const qint64 id = query->value(0).toLongLong();
        TransferRow row;
        row.state = TransferState(query->value(1).toInt());
        const QString fileId = query->value(2).toString();
        row.name = query->value(3).toString();
        row.path = query->value(4).toString();
        row.size = query->value(5).toLongLong();
        row.message = query->value(6).toString();
        const bool isFolder = query->value(7).toInt() == int(Transfer::Kind::Folder);
        query->finish();
        row.done = row.state == TransferState::Finished ? row.size : 0;
        addRunning(id, running, row.state, row.done, row.size, row.speed);
        if (isFolder && row.state == TransferState::Finished) {
            FolderSums sums;
            if (!sumFolder(id, running, sums))
                return Error{m_database.error()};
            row.size = sums.size;
            row.done = sums.done;
            row.speed = sums.speed;
            if (sums.unfinished > 0)
                row.state = TransferState::Running;
            else if (sums.failed > 0)
                row.state = TransferState::Failed;
            else if (sums.stopped > 0)
                row.state = TransferState::Stopped;
            if (row.state == TransferState::Failed)
                row.message = QStringLiteral("%1 of the folder's items failed").arg(sums.failed);
        }
        unfinished += row.state == TransferState::Queued || row.state == TransferState::Waiting ||
                      row.state == TransferState::Running;
        appendTask(json, task, fileId, row);
    }
    const QString word = unfinished > 0 ? QStringLiteral("downloading|")
                         : known > 0    ? QStringLiteral("finished|")
                                        : QStringLiteral("notask|");
    return Values{{QStringLiteral("jsonConten"), word + json + QStringLiteral("]}")}};
}

Result<TransferList> TransferQueries::list(qint64 context, TransferDirection direction, int offset, int count,
                                           const RunningTransfers& running)
{
    TransferList list;
    list.offset = offset;
    // A folder that is made or listed is no longer of interest; what is in it is.
    QSqlQuery* query =
        m_database.run("SELECT state, COUNT(*), SUM(CASE WHEN size > 0 THEN size ELSE 0 END) FROM "
                       "transfers WHERE context = ? AND direction = ? AND (kind = 1 OR state <> "
                       "4) GROUP BY state",
                       {context, int(direction)});
    while (query && query->next()) {
        const auto state = TransferState(query->value(0).toInt());
        const int rows = query->value(1).toInt();
        const qint64 size = query->value(2).toLongLong();
        list.total += rows;
        list.size += size;
        if (state == TransferState::Finished) {
            list.finished += rows;
            list.done += size;
        } else if (state == TransferState::Failed || state == TransferState::Stopped) {
            list.failed += rows;
        } else {
            list.active += rows;
        }
    }
    for (const RunningTransfer& transfer : running) {
        if (transfer.context == context && transfer.direction == direction) {
            list.done += transfer.done;
            list.speed += transfer.speed;
        }
    }
    if (query)
        query =
            m_database.run("SELECT id, state, name, path, size, message, kind FROM transfers WHERE context "
                           "= ? AND direction = ? AND (kind = 1 OR state <> 4) ORDER BY state, kind, id "
                           "LIMIT ? OFFSET ?",
                           {context, int(direction), count, offset});
    while (query && query->next()) {
        TransferRow row;
        const qint64 id = query->value(0).toLongLong();
        row.id = taskIdOf(id);
        row.state = TransferState(query->value(1).toInt());
        row.name = query->value(2).toString();
        row.path = query->value(3).toString();
        row.size = query->value(4).toLongLong();
        row.message = query->value(5).toString();
        row.isFolder = query->value(6).toInt() == int(Transfer::Kind::Folder);
        row.done = row.state == TransferState::Finished ? row.size : 0;
        addRunning(id, running, row.state, row.done, row.size, row.speed);
        list.rows.append(row);
    }
    return query ? Result<TransferList>(list) : Result<TransferList>(Error{m_database.error()});
}

} // namespace vlt::cloudsvr
