#pragma once

#include <map>
#include <optional>

#include <QByteArray>
#include <QString>

#include "http/HttpMessage.h"

namespace documents {

/**
 * Front-end packages as files "<plug-in>-<version>.zip" of one directory. An empty directory name means that
 * there are none. For one thread.
 */
class PackageDirectory
{
public:
    explicit PackageDirectory(QString directory);

    /** {"name","version","url","size","sha256"} of that package, or 404. */
    HttpReply description(const QString& plugin, const QString& version, const QByteArray& target);

    /** The package's file with its ETag (200 or 304), or 404. */
    HttpReply file(const QString& plugin, const QString& version, const HttpRequest& request) const;

private:
    struct Checksum
    {
        QByteArray tag; ///< of the file that was summed
        QByteArray sha256;
    };

    /** Empty unless plug-in and version are plain names of an existing package. */
    QString pathOf(const QString& plugin, const QString& version) const;
    std::optional<QByteArray> checksum(QFile& file, const QByteArray& tag);

    QString m_directory;
    std::map<QString, Checksum> m_checksums; ///< by path
};

} // namespace documents
