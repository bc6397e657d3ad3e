#pragma once

#include <QString>

/** The service's domains, as the shared services know them now. */
namespace ndomains {

/** The URL of a domain key ("quill", "drive", …); empty when it is not configured or there are no shared
 * services. */
QString url(const QString& key);
/** That URL without its port. */
QString origin(const QString& key);
/** The host of that URL. */
QString host(const QString& key);
/** Whether the host is one of the sites that the service's pages are on: the drive's or the documents'. */
bool isServiceHost(const QString& host);
/** The main domain whose requests get the session's cookies; empty without shared services. */
QString mainDomain();

} // namespace ndomains
