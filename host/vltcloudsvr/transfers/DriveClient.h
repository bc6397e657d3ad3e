#pragma once

#include "base/Outcome.h"
#include "vltcloudsvr/transfers/HttpLink.h"

#include <QByteArray>
#include <QString>
#include <QVector>

class QJsonObject;

namespace vlt::cloudsvr {

/** A file or folder of the drive. */
struct DriveItem
{
    QString id;
    QString name;
    QString sha1; //!< of a file: 40 lower-case hex digits
    qint64 size = 0;
    bool isFolder = false;
};

/** Why the drive did not do what it was asked. */
struct DriveError
{
    enum class Kind {
        Unreachable, //!< no connection, or it broke
        Server,      //!< it says that it failed
        Refused,     //!< it says that the request is wrong
        Garbage,     //!< its answer makes no sense
        Interrupted  //!< by `HttpLink::interrupt`
    };

    Kind kind = Kind::Garbage;
    int status = 0;
    QString code;       //!< the service's word
    QString text;       //!< for people
    qint64 offset = -1; //!< of an upload that stands elsewhere
};

template <typename T>
using DriveOutcome = base::Outcome<T, DriveError>;

/** Where an upload goes. */
struct UploadTarget
{
    QString groupId;
    QString parentId;
    QString fileId; //!< of the file that gets a new version; empty: a new file
    QString name;   //!< of a new file
};

struct UploadSession
{
    QString id;
    qint64 offset = 0;
};

/** Whether a file or folder of the drive may be called so: one step of a path, and no control characters. */
bool isDriveName(const QString& name);
bool isSha1(const QString& text);

/** The drive of a documents service, over one connection. Blocks; used on the link's thread. */
class DriveClient
{
public:
    explicit DriveClient(HttpLink& link)
        : m_link(link)
    {
    }

    /** The folder of that name, made when it is missing. */
    DriveOutcome<DriveItem> makeFolder(const QString& groupId, const QString& parentId, const QString& name);
    DriveOutcome<DriveItem> item(const QString& id);
    /** What a folder holds. */
    DriveOutcome<QVector<DriveItem>> list(const QString& groupId, const QString& folderId);

    /** A whole file in one request; for small ones. */
    DriveOutcome<DriveItem> put(const UploadTarget& target, const QByteArray& bytes, const QString& sha1);
    /** Begins an upload, or finds the one that was begun. */
    DriveOutcome<UploadSession> beginUpload(const UploadTarget& target, qint64 size, const QString& sha1);
    /** Announces bytes from `offset` on; they follow by `HttpLink::sendBody`, then `endBytes`. */
    DriveOutcome<HttpLink::Done> beginBytes(const UploadSession& session, qint64 count);
    /** Answers the upload's offset. */
    DriveOutcome<qint64> endBytes();
    DriveOutcome<DriveItem> finishUpload(const QString& uploadId);
    /** As far as that is possible. */
    void dropUpload(const QString& uploadId);

    struct Content
    {
        QString sha1;
        qint64 size = 0; //!< of the whole file
        qint64 from = 0; //!< where the bytes that follow begin
    };
    /**
     * Asks for the bytes of a file from `from` on, as long as it still is the content `sha1`; they follow by
     * `HttpLink::receiveBody`. The service may begin elsewhere, see `Content::from`.
     */
    DriveOutcome<Content> beginContent(const QString& fileId, const QString& version, qint64 from,
                                       const QString& sha1);

    static DriveError errorOf(const HttpLink::Failure& failure);

private:
    DriveOutcome<QJsonObject> ask(const HttpLink::Request& request, const QByteArray& body = {});
    DriveOutcome<QJsonObject> answer();
    DriveError refusal(int status);

    HttpLink& m_link;
};

} // namespace vlt::cloudsvr
