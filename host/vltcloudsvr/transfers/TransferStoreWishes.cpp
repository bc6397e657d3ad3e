#include "vltcloudsvr/transfers/TransferStore.h"

namespace vlt::cloudsvr {
namespace {

/** The row and everything below it, by the first value bound. */
#define VLT_TREE                                                                                             \
    "WITH RECURSIVE tree (id) AS (SELECT ? UNION ALL SELECT transfers.id FROM transfers JOIN tree ON "       \
    "transfers.parent_row = tree.id) "

} // namespace

Result<QVector<Transfer>> TransferStore::cancel(qint64 context, const QVector<qint64>& rows)
{
    QVector<Transfer> stopped;
    if (!begin())
        return Error{error()};
    for (const qint64 row : rows) {
        QSqlQuery* query =
            m_database.run(VLT_TREE "SELECT " VLT_TRANSFER_COLUMNS
                                    " FROM transfers WHERE id IN tree AND context = ? AND state IN (0, 1)",
                           {row, context});
        while (query && query->next())
            stopped.append(readTransfer(*query));
        if (!query ||
            !m_database.run(VLT_TREE "UPDATE transfers SET state = 3, modified = 0, sha1 = '', attempts = 0, "
                                     "not_before = 0 WHERE id IN tree AND context = ? AND state IN (0, 1)",
                            {row, context})) {
            rollBack();
            return Error{error()};
        }
    }
    return commit() ? Result<QVector<Transfer>>(stopped) : Result<QVector<Transfer>>(Error{error()});
}

Result<int> TransferStore::retry(qint64 context, const QVector<qint64>& rows)
{
    int count = 0;
    if (!begin())
        return Error{error()};
    for (qint64 row : rows) {
        const std::optional<int> changed = requeue(context, row);
        if (!changed) {
            rollBack();
            return Error{error()};
        }
        count += *changed;
    }
    return commit() ? Result<int>(count) : Result<int>(Error{error()});
}

std::optional<int> TransferStore::requeue(qint64 context, qint64 row)
{
    // Parents come first: whether a row waits depends on them.
    QSqlQuery* query = m_database.run(
        "WITH RECURSIVE chain (id, parent_row) AS (SELECT id, parent_row FROM transfers WHERE id = ? AND "
        "context = ? AND state IN (2, 3) UNION ALL SELECT transfers.id, transfers.parent_row FROM transfers "
        "JOIN chain ON transfers.id = chain.parent_row) UPDATE transfers SET attempts = 0, not_before = 0, "
        "code = '', detail = '', message = '', ended = 0, state = CASE WHEN COALESCE((SELECT state FROM "
        "transfers AS parent WHERE parent.id = transfers.parent_row), 4) = 4 THEN 0 ELSE 1 END WHERE id IN "
        "(SELECT id FROM chain) AND state IN (2, 3)",
        {row, context});
    if (!query)
        return {};
    const int above = query->numRowsAffected();
    query = m_database.run(
        VLT_TREE
        "UPDATE transfers SET attempts = 0, not_before = 0, code = '', detail = '', message = '', "
        "ended = 0, state = CASE WHEN COALESCE((SELECT state FROM transfers AS parent WHERE parent.id "
        "= transfers.parent_row), 4) = 4 THEN 0 ELSE 1 END WHERE id IN tree AND context = ? AND state "
        "IN (2, 3)",
        {row, context});
    if (!query)
        return {};
    return above + query->numRowsAffected();
}

Result<QVector<Transfer>> TransferStore::clearFinished(qint64 context, TransferDirection direction)
{
    QVector<Transfer> parts;
    if (direction == TransferDirection::Download) {
        QSqlQuery* query = m_database.run("SELECT " VLT_TRANSFER_COLUMNS
                                          " FROM transfers WHERE context = ? AND direction = 1 AND state = 2 "
                                          "AND kind = 1 AND sha1 <> ''",
                                          {context});
        while (query && query->next())
            parts.append(readTransfer(*query));
        if (!query)
            return Error{error()};
    }
    // The folder that others were asked for with stays as long as it is asked after.
    if (!m_database.run(
            "DELETE FROM transfers WHERE context = ? AND direction = ? AND state IN (2, 3, 4) AND "
            "NOT (kind = 0 AND EXISTS (SELECT 1 FROM transfers AS part WHERE part.root_row = "
            "transfers.id AND part.state IN (0, 1)))",
            {context, int(direction)}))
        return Error{error()};
    return parts;
}

void TransferStore::prune(qint64 endedBefore)
{
    m_database.run(
        "DELETE FROM transfers WHERE state = 4 AND ended < ? AND NOT (kind = 0 AND EXISTS (SELECT 1 "
        "FROM transfers AS part WHERE part.root_row = transfers.id AND part.state IN (0, 1)))",
        {endedBefore});
}

Result<QString> TransferStore::setting(const QString& userId, const QString& name, const QString& standard)
{
    QSqlQuery* query = m_database.run("SELECT value FROM settings WHERE user_id = ? AND name = ?",
                                      {userId.isNull() ? QStringLiteral("") : userId, name});
    if (!query)
        return Error{error()};
    const QString value = query->next() ? query->value(0).toString() : standard;
    query->finish();
    return value;
}

bool TransferStore::setSetting(const QString& userId, const QString& name, const QString& value)
{
    return m_database.run("INSERT OR REPLACE INTO settings (user_id, name, value) VALUES (?, ?, ?)",
                          {userId.isNull() ? QStringLiteral("") : userId, name, value});
}

} // namespace vlt::cloudsvr
