#pragma once

#include <optional>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "http/HttpMessage.h"

namespace documents {

/** The MIME type that a file's suffix stands for; "application/octet-stream" when it stands for none. */
QByteArray mimeTypeOf(const QString& fileName);

/** The tag of a file with that size and modification time (milliseconds since the epoch), quotes included. */
QByteArray entityTag(qint64 size, qint64 modified);

/** True when an "If-None-Match" field lists the tag. */
bool listsTag(const QByteArray& ifNoneMatch, const QByteArray& tag);

/** The date form of HTTP header fields ("Sun, 06 Nov 1994 08:49:37 GMT"), there and back; nothing when
 * malformed. */
QByteArray toHttpDate(qint64 secondsSinceEpoch);
std::optional<qint64> fromHttpDate(const QByteArray& text);

/**
 * The files below one directory. They may be kept, but are to be revalidated before every use; all carry an
 * ETag and a date, and a request that knows them gets 304. The service worker's script at the top may control
 * the whole site. Nothing outside the directory is ever served, by whatever path or symbolic link it is asked
 * for.
 */
class StaticSite
{
public:
    explicit StaticSite(QString directory);

    /** The regular file below the directory that these segments lead to, as a path without links. */
    std::optional<QString> resolve(const QStringList& segments) const;

    /** The file as a reply (200 or 304); nothing when there is no such file or it cannot be read. */
    std::optional<HttpReply> file(const QStringList& segments, const HttpRequest& request) const;

private:
    QString m_directory;
};

} // namespace documents
