#pragma once

#include <QString>

#include "drive/DriveStore.h"
#include "http/HttpMessage.h"

namespace documents {

/** The "Content-Disposition" of a file to be saved under that name: in ASCII, and as UTF-8. */
QByteArray attachmentField(const QString& name);

/**
 * A file's content as a download: 200, or 206 and 416 for one range asked for by GET (the whole when its
 * "If-Range" names another content), or 304. The tag is the content's SHA-1.
 */
HttpReply downloadReply(const OpenContent& content, const HttpRequest& request);

} // namespace documents
