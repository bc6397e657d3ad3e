#pragma once

#include <QString>

namespace shell {

/** The user's cookie text with the session's cookie, unless it has one or the key cannot be a cookie's value.
 * Ends in ";", as further cookies are put behind it. */
QString withSessionCookie(const QString& cookies, const QString& sessionKey);

/** The text without the cookie that `withSessionCookie` added for the key. */
QString withoutSessionCookie(const QString& cookies, const QString& sessionKey);

} // namespace shell
