#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace documents {

enum class RouteKind {
    Home,         ///< the page that a one-segment path without a dot names; the list of documents for "/"
                  ///< and where there is no such page
    DocumentPage, ///< "/p/ID", "/l/ID"
    NewPage,      ///< "/office/new/TYPE"
    SiteFile,     ///< a file of the site
    Files,        ///< "/api/v3/office/files"
    Preopen,      ///< "/api/v3/office/file/ID/preopen/PACKAGE"
    Content,      ///< "/api/v3/office/file/ID/content"
    OfficeConfig, ///< "/office-config/ID"
    VersionCheck, ///< "/api/v3/office/prefetch/vcs/ID"
    PackageInfo,  ///< "/api/quill/office/prefetch/config"
    Package,      ///< "/api/v3/office/package/PLUGIN"
    PackageFile,  ///< "/api/v3/office/package/PLUGIN/VERSION.zip"
    Drive,        ///< below "/api/v1/drive"; the drive knows its own resources
    Control,      ///< "/_control/RESOURCE"
    Unknown       ///< below "/api", "/office-config" or "/_control", yet none of the above
};

struct Route
{
    RouteKind kind = RouteKind::Unknown;
    QString id;   ///< of the document; the version of a package's file
    QString name; ///< office type code, package, plug-in or control resource or page, as the kind has it
    QStringList filePath; ///< below the site or the drive, for SiteFile and Drive
};

/** Where a decoded path leads, whatever the method. */
Route routeOf(const QStringList& segments);

/**
 * Whether only users with a session get an answer: documents and the drive, but not the site around them, its
 * versions and packages, and the control resources. The version check comes without cookies.
 */
bool needsSession(RouteKind kind);

/** The methods that a kind of route answers, as in an "Allow" field; control resources check their own. */
QByteArray allowedMethods(RouteKind kind);

} // namespace documents
