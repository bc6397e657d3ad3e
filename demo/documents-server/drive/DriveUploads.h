#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>

#include <QFile>
#include <QString>

#include "drive/DriveStore.h"
#include "drive/Sha1.h"

namespace documents {

struct UploadState
{
    qint64 id = 0;
    qint64 offset = 0; ///< bytes that are here
    qint64 size = 0;
    bool isNew = false; ///< started by this very call
};

/**
 * Uploads that come in parts: a record for the order, a file for the bytes that have arrived. Both outlive
 * the process, the offset is the file's size. An upload of bytes that are here already, in whatever file, is
 * complete from its beginning. The newest writer of an upload is the only one: those before it are refused
 * from then on. For one thread.
 */
class DriveUploads
{
    struct Session;

public:
    /** Takes the bytes from one offset on. Keep it no longer than the uploads. */
    class Writer
    {
    public:
        Writer(std::shared_ptr<Session> session, std::unique_ptr<QFile> file, qint64 offset, qint64 size);
        ~Writer();

        /** Appends; Conflict when another writer took over, NotFound when the upload is over. After a failure
         * the bytes before it are kept. */
        Failure write(const char* data, qint64 bytes);
        qint64 offset() const { return m_offset; }
        /** How many bytes there are still to come. */
        qint64 missing() const { return m_size - m_offset; }

    private:
        std::shared_ptr<Session> m_session;
        quint64 m_turn;
        std::unique_ptr<QFile> m_file;
        qint64 m_offset;
        qint64 m_size;
    };

    /** Called until it returns an outcome; each call checks a few megabytes. */
    using Finish = std::function<std::optional<Result<DriveItem>>()>;

    DriveUploads(DriveTables& tables, DriveStore& store, QString directory);

    /** Makes the directory. */
    Failure open() const;

    /** The unfinished upload with that very order, or a new one. */
    Result<UploadState> start(const UploadOrder& order);
    Result<UploadState> state(qint64 id);
    /** Conflict when the offset is not the upload's. */
    Result<std::shared_ptr<Writer>> write(qint64 id, qint64 offset);

    /**
     * Makes the upload a file. Conflict while bytes are missing. Sha1Mismatch, and NotFound when the place
     * for the file is gone, end the upload; other failures leave it as it is.
     */
    Result<Finish> finish(qint64 id);
    Failure cancel(qint64 id);
    /** Forgets the bytes of an upload without a record. */
    void drop(qint64 id);

private:
    QString pathOf(qint64 id) const;
    Result<UploadOrder> order(qint64 id);
    qint64 offset(qint64 id, const FileContent& content) const;
    std::shared_ptr<Session> session(qint64 id);
    Result<DriveItem> complete(qint64 id, const UploadOrder& order, const QString& sha1);

    DriveTables& m_tables;
    DriveStore& m_store;
    QString m_directory;
    std::map<qint64, std::shared_ptr<Session>> m_sessions; ///< that were written to since the start
};

} // namespace documents
