#pragma once

#include <QString>

#include "drive/DriveUploads.h"
#include "http/BodySink.h"
#include "http/HttpMessage.h"
#include "http/RequestTarget.h"

namespace documents {

/** Uploads in parts over HTTP. For one thread. */
class UploadApi
{
public:
    /** The uploads are kept by reference and outlive the API and its sinks. */
    explicit UploadApi(DriveUploads& uploads);

    /** {"groupid","parentid","fileid","name","size","sha1"} → {"uploadid","offset"}, 201, or 200 for one that
     * goes on. */
    HttpReply start(const QByteArray& body);

    /** {"uploadid","offset","size"}. */
    HttpReply state(qint64 id);

    /** Takes the body from the query's "offset" on → {"offset"}, or refuses. */
    Reception receive(qint64 id, const RequestTarget& target);

    /** Makes it a file; checking a large one takes a while. */
    Answer finish(qint64 id);
    HttpReply cancel(qint64 id);

private:
    DriveUploads& m_uploads;
};

} // namespace documents
