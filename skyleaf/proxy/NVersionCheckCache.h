#pragma once

#include <QDate>
#include <QString>
#include <QVariantMap>

/** Which office type the version check of a file answered; kept on this machine for some days. */
namespace nversioncheckcache {

/** Empty when unknown or too old. */
QString get(const QString& key);
/** Both texts must be non-empty. */
void set(const QString& key, const QString& officeType);

/** The entries that are whole and still good on that day. */
QVariantMap cleaned(const QVariantMap& entries, const QDate& today);

} // namespace nversioncheckcache
