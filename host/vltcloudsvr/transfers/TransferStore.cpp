#include "vltcloudsvr/transfers/TransferStore.h"

#include <utility>

namespace vlt::cloudsvr {
namespace {

constexpr int latestOrders = 1000;

/** A null text would be stored, and compared, as NULL. */
QVariant bound(const QString& text)
{
    return text.isNull() ? QStringLiteral("") : text;
}

std::optional<qint64> firstNumber(QSqlQuery* query)
{
    if (!query || !query->next())
        return {};
    const qint64 number = query->value(0).toLongLong();
    query->finish();
    return number;
}

} // namespace

Transfer readTransfer(const QSqlQuery& query)
{
    Transfer row;
    int column = 0;
    const auto number = [&] { return query.value(column++).toLongLong(); };
    const auto text = [&] { return query.value(column++).toString(); };
    row.id = number();
    row.context = number();
    row.parentRow = number();
    row.rootRow = number();
    row.direction = TransferDirection(number());
    row.kind = Transfer::Kind(number());
    row.state = TransferState(number());
    row.attempts = int(number());
    for (QString* member : {&row.groupId, &row.remoteParent, &row.remoteId, &row.history, &row.name,
                            &row.path, &row.root, &row.below})
        *member = text();
    row.size = number();
    row.modified = number();
    row.sha1 = text();
    return row;
}

TransferStore::TransferStore(QString file)
    : m_database(std::move(file))
{
}

Result<qint64> TransferStore::contextOf(const Caller& caller)
{
    const QVariantList key{bound(caller.userId), bound(caller.apiUrl)};
    if (!m_database.run("INSERT OR IGNORE INTO contexts (user_id, api_url) VALUES (?, ?)", key))
        return Error{error()};
    const auto id =
        firstNumber(m_database.run("SELECT id FROM contexts WHERE user_id = ? AND api_url = ?", key));
    return id ? Result<qint64>(*id) : Result<qint64>(Error{error()});
}

qint64 TransferStore::add(const Transfer& row)
{
    if (row.direction == TransferDirection::Upload && row.kind == Transfer::Kind::File) {
        const auto known = firstNumber(m_database.run(
            "SELECT id FROM transfers WHERE direction = 0 AND kind = 1 AND context = ? AND path = ? "
            "AND state IN (0, 1) AND parent_row = ? AND group_id = ? AND remote_parent = ? "
            "AND remote_id = ? LIMIT 1",
            {row.context, bound(row.path), row.parentRow, bound(row.groupId), bound(row.remoteParent),
             bound(row.remoteId)}));
        if (known)
            return *known;
    }
    QSqlQuery* query = m_database.run(
        "INSERT INTO transfers (context, parent_row, root_row, direction, kind, state, group_id, "
        "remote_parent, remote_id, history, name, path, root, below, size, message, sha1, code) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, '', 'item')",
        {row.context, row.parentRow, row.rootRow, int(row.direction), int(row.kind), int(row.state),
         bound(row.groupId), bound(row.remoteParent), bound(row.remoteId), bound(row.history),
         bound(row.name), bound(row.path), bound(row.root), bound(row.below), row.size, bound(row.problem)});
    return query ? query->lastInsertId().toLongLong() : 0;
}

std::optional<QString> TransferStore::orderAnswer(qint64 context, const QString& requestId)
{
    if (requestId.isEmpty())
        return {};
    QSqlQuery* query =
        m_database.run("SELECT answer FROM orders WHERE context = ? AND request = ?", {context, requestId});
    std::optional<QString> answer;
    if (query && query->next())
        answer = query->value(0).toString();
    if (query)
        query->finish();
    return answer;
}

bool TransferStore::noteOrder(qint64 context, const QString& requestId, const QString& answer)
{
    if (requestId.isEmpty())
        return true;
    QSqlQuery* query = m_database.run("INSERT INTO orders (context, request, answer) VALUES (?, ?, ?)",
                                      {context, requestId, bound(answer)});
    return query && m_database.run("DELETE FROM orders WHERE id <= ?",
                                   {query->lastInsertId().toLongLong() - latestOrders});
}

std::optional<Transfer> TransferStore::next(qint64 context, qint64 now, const QSet<qint64>& others)
{
    QSqlQuery* query = m_database.run("SELECT " VLT_TRANSFER_COLUMNS
                                      " FROM transfers WHERE state = 0 AND context = ? AND not_before <= ? "
                                      "ORDER BY kind, id LIMIT ?",
                                      {context, now, others.size() + 1});
    std::optional<Transfer> found;
    while (query && !found && query->next()) {
        if (!others.contains(query->value(0).toLongLong()))
            found = readTransfer(*query);
    }
    if (query)
        query->finish();
    return found;
}

qint64 TransferStore::nextTime(qint64 context, qint64 now)
{
    return firstNumber(m_database.run("SELECT MIN(not_before) FROM transfers WHERE state = 0 AND context = ? "
                                      "AND not_before > ?",
                                      {context, now}))
        .value_or(0);
}

bool TransferStore::hasUnfinished(qint64 context)
{
    for (const TransferDirection direction : {TransferDirection::Upload, TransferDirection::Download}) {
        if (firstNumber(
                m_database.run("SELECT 1 FROM transfers WHERE context = ? AND direction = ? AND state "
                               "IN (0, 1) LIMIT 1",
                               {context, int(direction)})))
            return true;
    }
    return false;
}

bool TransferStore::noteSource(qint64 row, qint64 size, qint64 modified, const QString& sha1)
{
    return m_database.run("UPDATE transfers SET size = ?, modified = ?, sha1 = ? WHERE id = ?",
                          {size, modified, bound(sha1), row});
}

bool TransferStore::notePlace(const Transfer& row)
{
    return m_database.run("UPDATE transfers SET size = ?, sha1 = ?, path = ?, name = ? WHERE id = ?",
                          {row.size, bound(row.sha1), bound(row.path), bound(row.name), row.id});
}

bool TransferStore::finish(const Transfer& row, const TransferEnd& end, qint64 now, qint64 notBefore)
{
    switch (end.kind) {
    case TransferEnd::Kind::Stopped:
        return true; // whoever stopped it stored that
    case TransferEnd::Kind::Later:
    case TransferEnd::Kind::Unreachable:
        return m_database.run(
            "UPDATE transfers SET attempts = attempts + 1, not_before = ?, message = ? WHERE "
            "id = ? AND state = 0",
            {notBefore, bound(end.message), row.id});
    case TransferEnd::Kind::Failed:
    case TransferEnd::Kind::Finished:
        break;
    }
    if (row.kind == Transfer::Kind::Folder)
        return settleFolder(row, end, now);
    const bool isFinished = end.kind == TransferEnd::Kind::Finished;
    // A file that arrived has arrived, also when it was to be stopped meanwhile.
    const char* statement =
        isFinished
            ? "UPDATE transfers SET state = ?, code = ?, detail = ?, message = ?, ended = ?, remote_id = "
              "COALESCE(NULLIF(?, ''), remote_id), sha1 = COALESCE(NULLIF(?, ''), sha1), path = "
              "COALESCE(NULLIF(?, ''), path), size = MAX(?, 0) WHERE id = ? AND state IN (0, 3)"
            : "UPDATE transfers SET state = ?, code = ?, detail = ?, message = ?, ended = ? WHERE id = "
              "? AND state = 0";
    QVariantList values{int(isFinished ? TransferState::Finished : TransferState::Failed), bound(end.code),
                        bound(end.detail), bound(end.message), now};
    if (isFinished)
        values << bound(end.remoteId) << bound(end.sha1) << bound(end.path) << end.size;
    values << row.id;
    return m_database.run(statement, values);
}

bool TransferStore::endTree(qint64 row, const TransferEnd& end, qint64 now)
{
    return m_database.run(
        "WITH RECURSIVE tree (id) AS (SELECT id FROM transfers WHERE parent_row = ? "
        "UNION ALL SELECT transfers.id FROM transfers JOIN tree ON transfers.parent_row = tree.id) "
        "UPDATE transfers SET state = 2, code = ?, detail = 'folder', message = ?, ended = ? "
        "WHERE id IN tree AND state IN (0, 1)",
        {row, bound(end.code), bound(QStringLiteral("Its folder could not be made: ") + end.message), now});
}

bool TransferStore::settleFolder(const Transfer& folder, const TransferEnd& end, qint64 now)
{
    const bool isFinished = end.kind == TransferEnd::Kind::Finished;
    if (!begin())
        return false;
    bool isWell = m_database.run("UPDATE transfers SET state = ?, code = ?, detail = ?, message = ?, "
                                 "ended = ?, remote_id = ? WHERE id = ? AND state = 0",
                                 {int(isFinished ? TransferState::Finished : TransferState::Failed),
                                  bound(end.code), bound(end.detail), bound(end.message), now,
                                  bound(isFinished ? end.remoteId : folder.remoteId), folder.id});
    if (isWell && isFinished && folder.direction == TransferDirection::Upload)
        isWell =
            m_database.run("UPDATE transfers SET state = 0, remote_parent = ? WHERE parent_row = ? AND "
                           "state = 1",
                           {bound(end.remoteId), folder.id}) &&
            m_database.run("UPDATE transfers SET remote_parent = ? WHERE parent_row = ? AND state IN (2, 3)",
                           {bound(end.remoteId), folder.id});
    else if (isWell && !isFinished)
        isWell = endTree(folder.id, end, now);
    if (!isWell) {
        rollBack();
        return false;
    }
    return commit();
}

bool TransferStore::finishListing(const Transfer& folder, const QVector<Transfer>& children, qint64 now)
{
    if (!begin())
        return false;
    QSqlQuery* query =
        m_database.run("UPDATE transfers SET state = 4, ended = ?, path = ?, name = ? WHERE id = "
                       "? AND state = 0",
                       {now, bound(folder.path), bound(folder.name), folder.id});
    bool isWell = query;
    if (isWell && query->numRowsAffected() == 0) { // stopped meanwhile
        rollBack();
        return true;
    }
    for (const Transfer& child : children)
        isWell = isWell && add(child) != 0;
    if (!isWell) {
        rollBack();
        return false;
    }
    return commit();
}

} // namespace vlt::cloudsvr
