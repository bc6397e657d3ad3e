#pragma once

#include <QByteArray>
#include <QString>

/** How the web application tells this client from others. */
namespace clientidentity {

/** The token of a user agent of the suite: it names the browser instead of the office, as URL-safe Base64. */
QByteArray tokenOf(QString userAgent);
/** The token of this process. */
QByteArray token();

} // namespace clientidentity
