#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <map>

namespace vlt::cloudsvr {

/**
 * One connection to the file of the queue, with its prepared statements. A commit survives the end of the
 * process; the last ones may be lost when the machine stops, and are then repeated. A damaged file is set
 * aside as "*.corrupt" and the queue starts empty. Used on the thread that made it.
 */
class TransferDatabase
{
public:
    explicit TransferDatabase(QString file);
    ~TransferDatabase();
    TransferDatabase(const TransferDatabase&) = delete;
    TransferDatabase& operator=(const TransferDatabase&) = delete;

    /** The statement's result, to be read before it is run again; null on an error, see `error`. */
    QSqlQuery* run(const char* statement, const QVariantList& values = {});
    bool begin() { return run("BEGIN IMMEDIATE"); }
    bool commit();
    void rollBack() { run("ROLLBACK"); }
    const QString& error() const { return m_error; }

private:
    bool isReady();
    bool open();
    void close();
    bool isDamaged() const;
    void setAside() const;

    const QString m_file;
    const QString m_connection;
    QSqlDatabase m_database;
    std::map<const char*, QSqlQuery> m_statements; //!< by the literal
    QString m_error;
    QString m_errorCode;
    bool m_isOpen = false;
};

} // namespace vlt::cloudsvr
