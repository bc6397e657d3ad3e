#pragma once

#include "server/RequestOverride.h"

#include <QByteArray>
#include <QString>

/** Who a request to the documents server comes from. */
namespace requestidentity {

/** The user agent of the page's requests, UTF-8. */
QByteArray pageUserAgent();

/** The bare host name that requests name as their origin; empty without domains. */
QString originHost();

/** The signed-in user's cookies; empty when nobody is known. */
QString userCookies();

/** "weboffice_branch=…;" or nothing; built once per process. */
QString branchCookie();

/**
 * Authenticates the request and gives it its cookies. The account SDK does so where it can; otherwise the
 * user's cookies are taken and headers generated for `path`.
 */
void authenticate(DocsRequest& request, const QString& method, const QString& path);

} // namespace requestidentity
