#pragma once

#include <functional>
#include <map>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include "store/Result.h"

namespace documents {

/**
 * One SQLite file and its prepared statements. A killed process loses nothing that a call reported as done.
 * The first call after `open` decides on the one thread that may use it until it is destroyed.
 */
class SqlFile
{
public:
    using OnRow = std::function<void(const QSqlQuery&)>;

    explicit SqlFile(QString path);
    ~SqlFile();

    /** Makes the file when missing and runs the schema's statements, which must not mind running again. */
    Failure open(const QStringList& schema, int version);

    /** Runs one statement, `onRow` for each row of its result. */
    Failure run(const QString& statement, const QVariantList& values, const OnRow& onRow = {});

    /** All changes or, after a failure, none. Not to be nested. */
    Failure transaction(const std::function<Failure()>& changes);

    /** Of the last row inserted. */
    qint64 lastId() const { return m_lastId; }

private:
    Failure connect();
    void disconnect();
    static Error failureOf(const QSqlError& error);

    QString m_path;
    QString m_connection;
    QSqlDatabase m_database;
    std::map<QString, QSqlQuery> m_statements;
    qint64 m_lastId = 0;
};

} // namespace documents
