#include "vltcloudsvr/records/RecordStore.h"

#include "vltcloudsvr/records/RecordData.h"
#include "zeolite/NxLoggerLite.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>
#include <QVariant>

#include <utility>

namespace vlt::cloudsvr {
namespace {

constexpr int schemaVersion = 1;

// SQLite's result codes for a file that cannot be trusted.
const QString codeDamaged = QStringLiteral("11");
const QString codeNoDatabase = QStringLiteral("26");

bool isDamage(const QSqlError& error)
{
    return error.nativeErrorCode() == codeDamaged || error.nativeErrorCode() == codeNoDatabase;
}

/** A null text would be stored, and compared, as NULL; nobody's user id is a text like any other. */
QVariant bound(const QString& text)
{
    return text.isNull() ? QStringLiteral("") : text;
}

DocumentRecord readRecord(const QSqlQuery& query)
{
    return {query.value(0).toString(), query.value(1).toString(),
            QJsonDocument::fromJson(query.value(2).toByteArray()).object()};
}

} // namespace

RecordStore::RecordStore(QString file)
    : m_file(std::move(file))
    , m_connection(QUuid::createUuid().toString(QUuid::Id128))
{
}

RecordStore::~RecordStore()
{
    close();
}

void RecordStore::close()
{
    m_isOpen = false;
    QSqlDatabase::removeDatabase(m_connection);
}

QString RecordStore::ready()
{
    if (m_isOpen)
        return {};
    std::optional<OpenError> error = tryOpen();
    if (error && error->isDamage) {
        close();
        setAside();
        error = tryOpen();
    }
    m_isOpen = !error;
    if (m_isOpen)
        return {};
    close();
    return error->text;
}

std::optional<RecordStore::OpenError> RecordStore::tryOpen()
{
    // SQLite opens what is there as it is, and waits for the other end of a pipe. Only looked at: a
    // descriptor that is closed here would end the locks of other connections.
    if (const QFileInfo present(m_file); present.exists() && !present.isFile())
        return OpenError{QStringLiteral("%1 is not a regular file").arg(m_file), true};
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    database.setDatabaseName(m_file);
    if (!database.open())
        return OpenError{database.lastError().text(), isDamage(database.lastError())};

    QSqlQuery query(database);
    const auto run = [&query](const QString& statement) -> std::optional<OpenError> {
        if (query.exec(statement))
            return {};
        return OpenError{query.lastError().text(), isDamage(query.lastError())};
    };
    if (auto error = run(QStringLiteral("PRAGMA quick_check(1)")))
        return error;
    if (!query.next() || query.value(0).toString() != QLatin1String("ok"))
        return OpenError{QStringLiteral("the file is damaged: ") + query.value(0).toString(), true};
    if (auto error = run(QStringLiteral("PRAGMA user_version")))
        return error;
    const int version = query.next() ? query.value(0).toInt() : 0;
    if (version > schemaVersion)
        return OpenError{QStringLiteral("the file is of a later version (%1)").arg(version), false};
    for (const QString& statement :
         {QStringLiteral("PRAGMA journal_mode = WAL"), QStringLiteral("PRAGMA synchronous = FULL"),
          QStringLiteral("CREATE TABLE IF NOT EXISTS records (user_id TEXT NOT NULL, local_id TEXT NOT NULL, "
                         "file_id TEXT NOT NULL, data TEXT NOT NULL, PRIMARY KEY (user_id, local_id), "
                         "UNIQUE (user_id, file_id))"),
          QStringLiteral("PRAGMA user_version = %1").arg(schemaVersion)}) {
        if (auto error = run(statement))
            return error;
    }
    return {};
}

void RecordStore::setAside()
{
    NxLoggerLite::writeError(
        QStringLiteral("vltcloudsvr"),
        QStringLiteral("%1 is damaged and was set aside; the records start anew").arg(m_file));
    for (const QString& suffix : {QString(), QStringLiteral("-wal"), QStringLiteral("-shm")}) {
        const QString aside = m_file + suffix + QStringLiteral(".corrupt");
        QFile::remove(aside);
        QFile::rename(m_file + suffix, aside);
    }
}

RecordStore::Found RecordStore::find(const QString& userId, const QString& localId)
{
    return findBy(QStringLiteral("local_id"), userId, localId);
}

RecordStore::Found RecordStore::findByFile(const QString& userId, const QString& fileId)
{
    return findBy(QStringLiteral("file_id"), userId, fileId);
}

RecordStore::Found RecordStore::findBy(const QString& column, const QString& userId, const QString& value)
{
    const QString error = ready();
    if (!error.isEmpty())
        return Error{error};
    QSqlQuery query(QSqlDatabase::database(m_connection));
    query.prepare(QStringLiteral("SELECT local_id, file_id, data FROM records WHERE user_id = ? AND %1 = ?")
                      .arg(column));
    query.addBindValue(bound(userId));
    query.addBindValue(bound(value));
    if (!query.exec())
        return Error{query.lastError().text()};
    if (!query.next())
        return std::optional<DocumentRecord>();
    return std::optional<DocumentRecord>(readRecord(query));
}

QString RecordStore::insert(const QString& userId, const DocumentRecord& record)
{
    return change(
        QStringLiteral("INSERT INTO records (data, user_id, local_id, file_id) VALUES (?, ?, ?, ?)"),
        {QString::fromUtf8(toText(record.data)), userId, record.localId, record.fileId});
}

QString RecordStore::update(const QString& userId, const DocumentRecord& record)
{
    return change(QStringLiteral("UPDATE records SET data = ? WHERE user_id = ? AND local_id = ?"),
                  {QString::fromUtf8(toText(record.data)), userId, record.localId});
}

QString RecordStore::remove(const QString& userId, const QString& localId)
{
    return change(QStringLiteral("DELETE FROM records WHERE user_id = ? AND local_id = ?"),
                  {userId, localId});
}

QString RecordStore::change(const QString& statement, const QStringList& values)
{
    const QString error = ready();
    if (!error.isEmpty())
        return error;
    QSqlQuery query(QSqlDatabase::database(m_connection));
    query.prepare(statement);
    for (const QString& value : values)
        query.addBindValue(bound(value));
    if (!query.exec())
        return query.lastError().text();
    return query.numRowsAffected() == 1 ? QString() : QStringLiteral("there is no such record");
}

} // namespace vlt::cloudsvr
