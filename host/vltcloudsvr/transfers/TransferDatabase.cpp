#include "vltcloudsvr/transfers/TransferDatabase.h"

#include "zeolite/NxLoggerLite.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QUuid>

#include <utility>

namespace vlt::cloudsvr {
namespace {

constexpr int schemaVersion = 2;

constexpr const char* schema[] = {
    "CREATE TABLE IF NOT EXISTS contexts (id INTEGER PRIMARY KEY, user_id TEXT NOT NULL, api_url TEXT NOT "
    "NULL, UNIQUE (user_id, api_url))",
    "CREATE TABLE IF NOT EXISTS settings (user_id TEXT NOT NULL, name TEXT NOT NULL, value TEXT NOT NULL, "
    "PRIMARY KEY (user_id, name))",
    "CREATE TABLE IF NOT EXISTS transfers (id INTEGER PRIMARY KEY AUTOINCREMENT, context INTEGER NOT NULL, "
    "parent_row INTEGER NOT NULL, root_row INTEGER NOT NULL, direction INTEGER NOT NULL, kind INTEGER NOT "
    "NULL, state INTEGER NOT NULL, attempts INTEGER NOT NULL DEFAULT 0, not_before INTEGER NOT NULL DEFAULT "
    "0, group_id TEXT, remote_parent TEXT, remote_id TEXT, history TEXT, name TEXT, path TEXT, root TEXT, "
    "below TEXT, size INTEGER NOT NULL, modified INTEGER NOT NULL DEFAULT 0, sha1 TEXT, code TEXT, detail "
    "TEXT, message TEXT, ended INTEGER NOT NULL DEFAULT 0)",
    "CREATE TABLE IF NOT EXISTS orders (id INTEGER PRIMARY KEY AUTOINCREMENT, context INTEGER NOT NULL, "
    "request TEXT NOT NULL, answer TEXT NOT NULL, UNIQUE (context, request))",
    // What is next; pages and totals; states of uploads; states of downloaded folders; what is in a folder.
    "CREATE INDEX IF NOT EXISTS by_queue ON transfers (context, kind, id) WHERE state = 0",
    "CREATE INDEX IF NOT EXISTS by_list ON transfers (context, direction, state, kind, id, size)",
    "CREATE INDEX IF NOT EXISTS by_path ON transfers (context, path, id) WHERE direction = 0 AND kind = 1",
    "CREATE INDEX IF NOT EXISTS by_folder ON transfers (context, remote_id, id) WHERE direction = 1 AND kind "
    "= 0",
    "CREATE INDEX IF NOT EXISTS by_parent ON transfers (parent_row) WHERE parent_row > 0",
    "CREATE INDEX IF NOT EXISTS by_root ON transfers (root_row, state, kind, size) WHERE root_row > 0"};

} // namespace

TransferDatabase::TransferDatabase(QString file)
    : m_file(std::move(file))
    , m_connection(QUuid::createUuid().toString(QUuid::Id128))
{
}

TransferDatabase::~TransferDatabase()
{
    close();
}

void TransferDatabase::close()
{
    m_isOpen = false;
    m_statements.clear();
    m_database = {};
    QSqlDatabase::removeDatabase(m_connection);
}

bool TransferDatabase::isDamaged() const
{
    return m_errorCode == QLatin1String("11") || m_errorCode == QLatin1String("26");
}

bool TransferDatabase::isReady()
{
    if (m_isOpen || open())
        return true;
    const bool isStartingAnew = isDamaged();
    close();
    if (!isStartingAnew)
        return false;
    setAside();
    if (open())
        return true;
    close();
    return false;
}

void TransferDatabase::setAside() const
{
    NxLoggerLite::writeError(
        QStringLiteral("vltcloudsvr"),
        QStringLiteral("%1 is damaged and was set aside; the queue of transfers starts anew").arg(m_file));
    for (const QString& suffix : {QString(), QStringLiteral("-wal"), QStringLiteral("-shm")}) {
        const QString aside = m_file + suffix + QStringLiteral(".corrupt");
        QFile::remove(aside);
        QFile::rename(m_file + suffix, aside);
    }
}

bool TransferDatabase::open()
{
    m_errorCode.clear();
    // SQLite opens what is there as it is, and waits for the other end of a pipe. Only looked at: a
    // descriptor that is closed here would end the locks of other connections.
    if (const QFileInfo present(m_file); present.exists() && !present.isFile()) {
        m_error = QStringLiteral("%1 is not a regular file").arg(m_file);
        m_errorCode = QStringLiteral("26"); // no database
        return false;
    }
    m_database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    m_database.setDatabaseName(m_file);
    m_database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=10000"));
    if (!m_database.open()) {
        m_error = m_database.lastError().text();
        return false;
    }
    m_isOpen = true; // for the statements below
    const auto set = [this](const char* statement) {
        QSqlQuery* query = run(statement);
        if (query)
            query->finish(); // a pragma answers a row, which would keep the file in use
        return query != nullptr;
    };
    QSqlQuery* query = run("PRAGMA user_version");
    const int version = query && query->next() ? query->value(0).toInt() : 0;
    bool isWell = query;
    if (isWell)
        query->finish();
    if (version > schemaVersion) {
        m_error = QStringLiteral("%1 is of a later version (%2)").arg(m_file).arg(version);
        isWell = false;
    }
    // A checkpoint waits for the disk, and every file that ends writes some pages.
    isWell = isWell && set("PRAGMA journal_mode = WAL") && set("PRAGMA synchronous = NORMAL") &&
             set("PRAGMA wal_autocheckpoint = 4000");
    if (isWell && version < schemaVersion) {
        for (const char* statement : schema)
            isWell = isWell && set(statement);
        isWell = isWell && set("PRAGMA user_version = 2");
    }
    m_isOpen = isWell;
    return isWell;
}

QSqlQuery* TransferDatabase::run(const char* statement, const QVariantList& values)
{
    if (!isReady())
        return nullptr;
    const auto [entry, isNew] = m_statements.try_emplace(statement, m_database);
    QSqlQuery& query = entry->second;
    bool isWell = true;
    if (isNew) {
        query.setForwardOnly(true);
        isWell = query.prepare(QString::fromLatin1(statement));
    }
    for (int i = 0; isWell && i < values.size(); ++i)
        query.bindValue(i, values[i]);
    if (isWell && query.exec())
        return &query;
    m_error = query.lastError().text();
    m_errorCode = query.lastError().nativeErrorCode();
    m_statements.erase(entry);
    NxLoggerLite::writeWarning(QStringLiteral("vltcloudsvr"),
                               QStringLiteral("the queue of transfers: %1").arg(m_error));
    return nullptr;
}

bool TransferDatabase::commit()
{
    if (run("COMMIT"))
        return true;
    const QString error = m_error;
    rollBack();
    m_error = error;
    return false;
}

} // namespace vlt::cloudsvr
