#pragma once

#include <QJsonObject>
#include <QString>
#include <QVariantMap>

/** A request to the documents server under construction. */
struct DocsRequest
{
    QString url;
    QVariantMap headers; //!< name to text or bytes
    QJsonObject body;
    QString cookies; //!< "name=value;…"
};

/** What a file's local data says about its requests. */
namespace requestoverride {

/** The name under which a route's override stands in the local data. */
QString memberName(const QString& routeKey);

/** Adds the override's query items, headers, body members and cookies. Values other than texts count as
 * empty. */
void apply(const QJsonObject& changes, DocsRequest& request);

/** Writes the cookies into the headers "Cookie" and "X-Cookie". */
void writeCookies(DocsRequest& request);

} // namespace requestoverride
