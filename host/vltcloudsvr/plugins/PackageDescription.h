#pragma once

#include "vltcloudsvr/common/Result.h"

#include <QByteArray>
#include <QUrl>

namespace vlt::cloudsvr {

/** A package as the documents service offers it. */
struct PackageDescription
{
    QString version;
    QUrl url; //!< of the zip file, on the origin that described it
    qint64 size = 0;
    QByteArray sha256; //!< 32 bytes
};

/** Where the package of a plug-in is described; empty when the API's URL is none. */
QUrl packageUrl(const QString& apiUrl, const QString& pluginName);

/** Reads the description that was found at `base`. A URL of another origin is an error. */
Result<PackageDescription> parsePackageDescription(const QByteArray& json, const QString& pluginName,
                                                   const QUrl& base);

} // namespace vlt::cloudsvr
