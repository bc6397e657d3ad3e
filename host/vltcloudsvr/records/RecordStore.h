#pragma once

#include "vltcloudsvr/common/Result.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <optional>

namespace vlt::cloudsvr {

struct DocumentRecord
{
    QString localId;
    QString fileId;
    QJsonObject data;
};

/**
 * The records of documents, in a SQLite file. Users are kept apart: a record is found only for the user that
 * it was made for. A file that is no database, or a damaged one, is set aside as "*.corrupt" and the store
 * starts empty; one of a later version is left alone and every operation fails.
 *
 * Used on the thread that made it. Errors are texts for the log.
 */
class RecordStore
{
public:
    using Found = Result<std::optional<DocumentRecord>>;

    explicit RecordStore(QString file);
    ~RecordStore();
    RecordStore(const RecordStore&) = delete;
    RecordStore& operator=(const RecordStore&) = delete;

    Found find(const QString& userId, const QString& localId);
    Found findByFile(const QString& userId, const QString& fileId);
    /** Empty, or the error. A file has one record at most. */
    QString insert(const QString& userId, const DocumentRecord& record);
    QString update(const QString& userId, const DocumentRecord& record);
    QString remove(const QString& userId, const QString& localId);

private:
    struct OpenError
    {
        QString text;
        bool isDamage = false;
    };

    /** Opens the file unless it is open; empty, or the error. */
    QString ready();
    std::optional<OpenError> tryOpen();
    void close();
    void setAside();
    Found findBy(const QString& column, const QString& userId, const QString& value);
    QString change(const QString& statement, const QStringList& values);

    const QString m_file;
    const QString m_connection;
    bool m_isOpen = false;
};

} // namespace vlt::cloudsvr
