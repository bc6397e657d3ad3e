#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

namespace vlt::tava {

/**
 * The headers that let a request of an application act for a user: header name to value. `path` is the
 * request's path. The identities are the user's, in local 8-bit encoding; empty ones give no headers.
 * User-interface thread.
 */
QMap<QString, QByteArray> rpcGenerateAuthCodeHeaderDataByApp(const QByteArray& kind,
                                                             const QByteArray& application,
                                                             const QByteArray& identity1,
                                                             const QByteArray& identity2,
                                                             const QString& path);

} // namespace vlt::tava
