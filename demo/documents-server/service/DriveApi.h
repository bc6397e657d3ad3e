#pragma once

#include <QStringList>

#include "drive/Drive.h"
#include "http/BodySink.h"
#include "http/HttpMessage.h"
#include "http/RequestTarget.h"
#include "service/UploadApi.h"
#include "store/DocumentStore.h"

namespace documents {

/**
 * The drive over HTTP, below "/api/v1/drive": folders and files by group, their versions and contents, and
 * uploads. The documents are listed beside the files of group 0's root and can only be looked at. For one
 * thread.
 */
class DriveApi
{
public:
    /** Both are kept by reference and outlive the API. */
    DriveApi(Drive& drive, const DocumentStore& documents);

    /** True for a PUT that takes effect while its body arrives; it does not come to `answer`. */
    static bool isStreamed(const QStringList& path);

    /** How a PUT's body is received; `path` are the decoded segments below the drive's address. */
    Reception receive(const QStringList& path, const RequestTarget& target);

    Answer answer(const QStringList& path, const RequestTarget& target, const HttpRequest& request);

private:
    Answer groups(const QStringList& path, const RequestTarget& target, const HttpRequest& request);
    Answer items(qint64 id, const HttpRequest& request);
    Answer files(qint64 id, const QString& part, const RequestTarget& target, const HttpRequest& request);
    Answer uploads(const QStringList& path, const HttpRequest& request);

    HttpReply list(qint64 group, qint64 folder);
    HttpReply makeFolder(qint64 group, const QByteArray& body);
    HttpReply put(qint64 group, qint64 parent, const RequestTarget& target, const QByteArray& body);
    HttpReply item(qint64 id);
    HttpReply remove(qint64 id);
    HttpReply content(qint64 file, const RequestTarget& target, const HttpRequest& request);
    HttpReply versions(qint64 file);

    Drive& m_drive;
    const DocumentStore& m_documents;
    UploadApi m_uploads;
};

} // namespace documents
