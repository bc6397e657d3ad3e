#include "drive/DriveTables.h"

namespace documents {
namespace {

constexpr int schemaVersion = 1;

/** Ids of items start here: far above those of documents, which share the lists and addresses. */
constexpr qint64 idsBegin = 1'000'000'000;

const QString itemColumns = QStringLiteral("id, grp, parent, name, is_file, sha1, size, modified, version");

/** The item bound to the first place and all items below it, as the table "tree". */
const QString treeOfItem = QStringLiteral(
    "WITH RECURSIVE tree(id) AS (VALUES(?) UNION ALL SELECT items.id FROM items JOIN tree ON items.parent = "
    "tree.id) ");

QStringList schema()
{
    return {
        QStringLiteral("CREATE TABLE IF NOT EXISTS items (id INTEGER PRIMARY KEY AUTOINCREMENT, "
                       "grp INTEGER NOT NULL, parent INTEGER NOT NULL, name TEXT NOT NULL, "
                       "is_file INTEGER NOT NULL, sha1 TEXT NOT NULL, size INTEGER NOT NULL, "
                       "modified INTEGER NOT NULL, version INTEGER NOT NULL, UNIQUE (parent, grp, name))"),
        QStringLiteral(
            "CREATE TABLE IF NOT EXISTS versions (file INTEGER NOT NULL, version INTEGER NOT NULL, "
            "sha1 TEXT NOT NULL, size INTEGER NOT NULL, modified INTEGER NOT NULL, "
            "PRIMARY KEY (file, version)) WITHOUT ROWID"),
        QStringLiteral("CREATE INDEX IF NOT EXISTS versions_by_sha1 ON versions (sha1)"),
        QStringLiteral("CREATE TABLE IF NOT EXISTS uploads (id INTEGER PRIMARY KEY AUTOINCREMENT, "
                       "grp INTEGER NOT NULL, parent INTEGER NOT NULL, file INTEGER NOT NULL, "
                       "name TEXT NOT NULL, sha1 TEXT NOT NULL, size INTEGER NOT NULL, "
                       "UNIQUE (grp, parent, file, name, sha1, size))"),
        QStringLiteral("INSERT INTO sqlite_sequence (name, seq) SELECT 'items', %1 WHERE NOT EXISTS "
                       "(SELECT 1 FROM sqlite_sequence WHERE name = 'items')")
            .arg(idsBegin),
    };
}

DriveItem readItem(const QSqlQuery& row)
{
    DriveItem item;
    item.id = row.value(0).toLongLong();
    item.group = row.value(1).toLongLong();
    item.parent = row.value(2).toLongLong();
    item.name = row.value(3).toString();
    item.type = row.value(4).toBool() ? DriveItemType::File : DriveItemType::Folder;
    item.content = {row.value(5).toString(), row.value(6).toLongLong()};
    item.modified = row.value(7).toLongLong();
    item.version = row.value(8).toLongLong();
    return item;
}

/** A null text would be stored as NULL. */
QVariant text(const QString& value)
{
    return value.isNull() ? QStringLiteral("") : value;
}

QVariantList valuesOf(const UploadOrder& order)
{
    const FileTarget& target = order.target;
    return {target.group,      target.parent,      target.file,
            text(target.name), order.content.sha1, order.content.size};
}

/** The outcome of a statement whose rows were gathered in `value`. */
template <typename T>
Result<T> outcome(const Failure& failure, const T& value)
{
    if (failure)
        return *failure;
    return value;
}

} // namespace

DriveTables::DriveTables(const QString& file)
    : m_file(file)
{
}

Failure DriveTables::open()
{
    return m_file.open(schema(), schemaVersion);
}

Result<QVector<DriveItem>> DriveTables::items(const QString& statement, const QVariantList& values)
{
    QVector<DriveItem> found;
    const Failure failure =
        m_file.run(statement, values, [&found](const QSqlQuery& row) { found.append(readItem(row)); });
    return outcome(failure, found);
}

Result<std::optional<DriveItem>> DriveTables::oneItem(const QString& statement, const QVariantList& values)
{
    std::optional<DriveItem> found;
    const Failure failure =
        m_file.run(statement, values, [&found](const QSqlQuery& row) { found = readItem(row); });
    return outcome(failure, found);
}

Result<std::optional<DriveItem>> DriveTables::item(qint64 id)
{
    static const QString statement = QStringLiteral("SELECT %1 FROM items WHERE id = ?").arg(itemColumns);
    return oneItem(statement, {id});
}

Result<std::optional<DriveItem>> DriveTables::child(qint64 group, qint64 parent, const QString& name)
{
    static const QString statement =
        QStringLiteral("SELECT %1 FROM items WHERE parent = ? AND grp = ? AND name = ?").arg(itemColumns);
    return oneItem(statement, {parent, group, name});
}

Result<QVector<DriveItem>> DriveTables::children(qint64 group, qint64 parent)
{
    static const QString statement =
        QStringLiteral("SELECT %1 FROM items WHERE parent = ? AND grp = ? ORDER BY is_file, name")
            .arg(itemColumns);
    return items(statement, {parent, group});
}

Result<QVector<DriveItem>> DriveTables::path(qint64 folder)
{
    static const QString statement =
        QStringLiteral("WITH RECURSIVE up(step, at) AS (VALUES(0, ?) UNION ALL SELECT step + 1, items.parent "
                       "FROM items JOIN up ON items.id = up.at) "
                       "SELECT %1 FROM items JOIN up ON items.id = up.at ORDER BY step DESC")
            .arg(itemColumns);
    return items(statement, {folder});
}

Result<DriveItem> DriveTables::insert(const DriveItem& item)
{
    DriveItem inserted = item;
    const bool isFile = item.type == DriveItemType::File;
    if (Failure failure = m_file.run(
            QStringLiteral("INSERT INTO items (grp, parent, name, is_file, sha1, size, modified, version) "
                           "VALUES (?, ?, ?, ?, ?, ?, ?, ?)"),
            {item.group, item.parent, item.name, isFile, text(item.content.sha1), item.content.size,
             item.modified, item.version}))
        return *failure;
    inserted.id = m_file.lastId();
    if (isFile) {
        if (Failure failure = addVersion(inserted))
            return *failure;
    }
    return inserted;
}

Failure DriveTables::rename(const DriveItem& file)
{
    return m_file.run(QStringLiteral("UPDATE items SET name = ? WHERE id = ?"), {file.name, file.id});
}

Failure DriveTables::addVersion(const DriveItem& file)
{
    if (Failure failure = m_file.run(
            QStringLiteral("UPDATE items SET sha1 = ?, size = ?, modified = ?, version = ? WHERE id = ?"),
            {file.content.sha1, file.content.size, file.modified, file.version, file.id}))
        return failure;
    return m_file.run(
        QStringLiteral("INSERT INTO versions (file, version, sha1, size, modified) VALUES (?, ?, ?, ?, ?)"),
        {file.id, file.version, file.content.sha1, file.content.size, file.modified});
}

Result<RemovedParts> DriveTables::remove(qint64 id)
{
    RemovedParts parts;
    QStringList contents;
    const auto append = [](auto& list, auto read) {
        return [&list, read](const QSqlQuery& row) { list.append(read(row.value(0))); };
    };
    const auto readId = [](const QVariant& value) { return value.toLongLong(); };
    const auto readText = [](const QVariant& value) { return value.toString(); };

    const auto removeAll = [&]() -> Failure {
        static const QString contentsBelow =
            treeOfItem + QStringLiteral("SELECT DISTINCT sha1 FROM versions WHERE file IN tree");
        if (Failure failure = m_file.run(contentsBelow, {id}, append(contents, readText)))
            return failure;
        static const QString uploadsBelow =
            treeOfItem + QStringLiteral("SELECT id FROM uploads WHERE parent IN tree OR file IN tree");
        if (Failure failure = m_file.run(uploadsBelow, {id}, append(parts.uploads, readId)))
            return failure;
        for (const qint64 upload : qAsConst(parts.uploads)) {
            if (Failure failure = removeUpload(upload))
                return failure;
        }
        static const QString versionsBelow =
            treeOfItem + QStringLiteral("DELETE FROM versions WHERE file IN tree");
        if (Failure failure = m_file.run(versionsBelow, {id}))
            return failure;
        static const QString itemsBelow = treeOfItem + QStringLiteral("DELETE FROM items WHERE id IN tree");
        if (Failure failure = m_file.run(itemsBelow, {id}))
            return failure;
        for (const QString& sha1 : qAsConst(contents)) {
            bool isUsed = false;
            if (Failure failure = m_file.run(QStringLiteral("SELECT 1 FROM versions WHERE sha1 = ? LIMIT 1"),
                                             {sha1}, [&isUsed](const QSqlQuery&) { isUsed = true; }))
                return failure;
            if (!isUsed)
                parts.contents.append(sha1);
        }
        return std::nullopt;
    };
    return outcome(m_file.transaction(removeAll), parts);
}

Result<QVector<FileVersion>> DriveTables::versions(qint64 file)
{
    QVector<FileVersion> found;
    const Failure failure = m_file.run(
        QStringLiteral(
            "SELECT version, sha1, size, modified FROM versions WHERE file = ? ORDER BY version DESC"),
        {file}, [&found](const QSqlQuery& row) {
            found.append({row.value(0).toLongLong(),
                          {row.value(1).toString(), row.value(2).toLongLong()},
                          row.value(3).toLongLong()});
        });
    return outcome(failure, found);
}

Result<std::optional<UploadOrder>> DriveTables::upload(qint64 id)
{
    std::optional<UploadOrder> found;
    const Failure failure =
        m_file.run(QStringLiteral("SELECT grp, parent, file, name, sha1, size FROM uploads WHERE id = ?"),
                   {id}, [&found](const QSqlQuery& row) {
                       const FileTarget target{row.value(0).toLongLong(), row.value(1).toLongLong(),
                                               row.value(2).toLongLong(), row.value(3).toString()};
                       found = UploadOrder{target, {row.value(4).toString(), row.value(5).toLongLong()}};
                   });
    return outcome(failure, found);
}

Result<std::optional<qint64>> DriveTables::uploadLike(const UploadOrder& order)
{
    std::optional<qint64> found;
    const Failure failure =
        m_file.run(QStringLiteral("SELECT id FROM uploads WHERE grp = ? AND parent = ? AND file = ? "
                                  "AND name = ? AND sha1 = ? AND size = ?"),
                   valuesOf(order), [&found](const QSqlQuery& row) { found = row.value(0).toLongLong(); });
    return outcome(failure, found);
}

Result<qint64> DriveTables::insert(const UploadOrder& order)
{
    const Failure failure = m_file.run(
        QStringLiteral("INSERT INTO uploads (grp, parent, file, name, sha1, size) VALUES (?, ?, ?, ?, ?, ?)"),
        valuesOf(order));
    return outcome(failure, m_file.lastId());
}

Failure DriveTables::removeUpload(qint64 id)
{
    return m_file.run(QStringLiteral("DELETE FROM uploads WHERE id = ?"), {id});
}

Result<DriveTotals> DriveTables::totals()
{
    DriveTotals totals;
    const Failure failure =
        m_file.run(QStringLiteral("SELECT (SELECT count(*) FROM items WHERE is_file = 0), "
                                  "(SELECT count(*) FROM items WHERE is_file = 1), "
                                  "(SELECT count(*) FROM uploads), "
                                  "(SELECT total(size) FROM (SELECT DISTINCT sha1, size FROM versions))"),
                   {}, [&totals](const QSqlQuery& row) {
                       totals = {row.value(0).toLongLong(), row.value(1).toLongLong(),
                                 row.value(2).toLongLong(), row.value(3).toLongLong()};
                   });
    return outcome(failure, totals);
}

} // namespace documents
