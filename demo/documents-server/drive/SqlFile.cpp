#include "drive/SqlFile.h"

#include <QSqlError>
#include <QUuid>

namespace documents {
namespace {

const QString codeFull = QStringLiteral("13"); // SQLITE_FULL

} // namespace

SqlFile::SqlFile(QString path)
    : m_path(std::move(path))
    , m_connection(QUuid::createUuid().toString(QUuid::Id128))
{
}

SqlFile::~SqlFile()
{
    disconnect();
}

Failure SqlFile::open(const QStringList& schema, int version)
{
    qint64 found = 0;
    QString check;
    Failure failure = connect();
    if (!failure)
        failure = run(QStringLiteral("PRAGMA quick_check(1)"), {},
                      [&check](const QSqlQuery& row) { check = row.value(0).toString(); });
    if (!failure && check != QLatin1String("ok"))
        failure = Error{ErrorCode::Storage, QStringLiteral("\"%1\" is damaged: %2.").arg(m_path, check)};
    if (!failure)
        failure = run(QStringLiteral("PRAGMA user_version"), {},
                      [&found](const QSqlQuery& row) { found = row.value(0).toLongLong(); });
    if (!failure && found > version)
        failure = Error{ErrorCode::Storage, QStringLiteral("\"%1\" is of a later version.").arg(m_path)};
    if (!failure)
        failure = transaction([&]() -> Failure {
            for (const QString& statement : schema) {
                if (Failure refused = run(statement, {}))
                    return refused;
            }
            return run(QStringLiteral("PRAGMA user_version = %1").arg(version), {});
        });
    // Qt binds a connection to the thread that made it, and another one may be about to use this object.
    disconnect();
    return failure;
}

Failure SqlFile::run(const QString& statement, const QVariantList& values, const OnRow& onRow)
{
    if (Failure failure = connect())
        return failure;
    auto known = m_statements.find(statement);
    if (known == m_statements.end()) {
        QSqlQuery query(m_database);
        query.setForwardOnly(true);
        if (!query.prepare(statement))
            return failureOf(query.lastError());
        known = m_statements.emplace(statement, query).first;
    }
    QSqlQuery& query = known->second;
    for (int i = 0; i < values.size(); ++i)
        query.bindValue(i, values.at(i));
    if (!query.exec())
        return failureOf(query.lastError());
    while (query.next()) {
        if (onRow)
            onRow(query);
    }
    const QSqlError error = query.lastError();
    if (error.type() == QSqlError::NoError && !query.isSelect())
        m_lastId = query.lastInsertId().toLongLong();
    query.finish();
    return error.type() == QSqlError::NoError ? Failure() : failureOf(error);
}

Failure SqlFile::transaction(const std::function<Failure()>& changes)
{
    Failure failure = run(QStringLiteral("BEGIN IMMEDIATE"), {});
    if (failure)
        return failure;
    failure = changes();
    if (!failure)
        failure = run(QStringLiteral("COMMIT"), {});
    if (failure)
        run(QStringLiteral("ROLLBACK"), {});
    return failure;
}

Failure SqlFile::connect()
{
    if (m_database.isOpen())
        return std::nullopt;
    m_database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    m_database.setDatabaseName(m_path);
    if (!m_database.open())
        return failureOf(m_database.lastError());
    for (const QString& setting :
         {QStringLiteral("PRAGMA journal_mode = WAL"), QStringLiteral("PRAGMA synchronous = NORMAL")}) {
        QSqlQuery query(m_database);
        if (!query.exec(setting))
            return failureOf(query.lastError());
    }
    return std::nullopt;
}

void SqlFile::disconnect()
{
    m_statements.clear();
    if (!m_database.isValid())
        return;
    m_database.close();
    m_database = {};
    QSqlDatabase::removeDatabase(m_connection);
}

Error SqlFile::failureOf(const QSqlError& error)
{
    if (error.nativeErrorCode() == codeFull)
        return {ErrorCode::DiskFull, QStringLiteral("The server's disk is full.")};
    return {ErrorCode::Storage, QStringLiteral("The drive's records failed: %1.").arg(error.text())};
}

} // namespace documents
