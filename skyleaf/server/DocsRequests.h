#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/** What the documents server is asked, as plain texts. */
namespace docsrequests {

// Names of the requests and of their replies.
extern const QString versionCheck;
extern const QString packageInfo;
extern const QString envConfig;
extern const QString ssrContent;
extern const QString openFile;
extern const QString dataUpgrade;
extern const QString downloadFile;

// Paths below the service's origin, with their queries.
QString versionCheckPath(const QString& key, const QString& officeType);
QString packageInfoPath();
/** `ssr`: the content rendered by the server, else the environment configuration. */
QString officeConfigPath(const QString& fileId, bool ssr);
QString preopenPath(const QString& fileId, const QString& packageName);
/** With the time at which the page's load began; an empty time changes nothing. */
QString withStartTime(const QString& path, const QString& startTime);

// Keys under which a file's local data may change its requests.
QString officeConfigRoute();
QString preopenRoute(const QString& packageName);

/** A JSON array with one object; the build time goes along when it is above 0, the version when it is not
 * empty. */
QByteArray packageInfoBody(const QString& packageName, const QString& frontVer, qint64 buildTime);
/** A version that must be upgraded is not named. */
QJsonObject preopenBody(const QString& frontVer, bool mustUpgrade, const QString& connId);

/** The value of the URL's "startTime"; empty when there is none or the URL is not valid. */
QString startTimeOf(const QString& pageUrl);

} // namespace docsrequests
