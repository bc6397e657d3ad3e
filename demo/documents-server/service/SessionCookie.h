#pragma once

#include <QByteArray>

namespace documents {

/** True when a "Cookie" field names the documents session. */
bool hasSessionCookie(const QByteArray& cookieField);

/** A "Set-Cookie" field that starts a documents session under a fresh random name. */
QByteArray newSessionCookie();

} // namespace documents
