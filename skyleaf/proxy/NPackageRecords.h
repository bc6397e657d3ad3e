#pragma once

#include <QString>
#include <QtGlobal>

/** What the documents server said about the versions of front-end packages; kept in the user's settings. */
namespace npackagerecords {

/** Seconds since the epoch; 0 for a version that never expires. */
qint64 expireTime(const QString& officeType, const QString& frontVer);
void setExpireTime(const QString& officeType, const QString& frontVer, qint64 secondsSinceEpoch);

bool mustUpgrade(const QString& officeType, const QString& frontVer);
void setMustUpgrade(const QString& officeType, const QString& frontVer);

/** The version that the version check answered for a version; empty when it was never asked. Kept for known
 * ones only. */
QString checkedVersion(const QString& officeType, const QString& frontVer);
void setCheckedVersion(const QString& officeType, const QString& frontVer, const QString& serverVersion);

/** Kept for the user; an empty user id keeps nothing. */
void setUserMissTag(const QString& userId, bool missed);

} // namespace npackagerecords
