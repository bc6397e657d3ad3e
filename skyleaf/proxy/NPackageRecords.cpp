#include "proxy/NPackageRecords.h"

#include "proxy/NDOPSettings.h"

namespace npackagerecords {
namespace {

using NDocsOfflinePage::NDOPSettings;

const QString expireTimeGroup = QStringLiteral("expireTime");
const QString mustUpgradeGroup = QStringLiteral("mustUpgrade");
const QString versionCheckGroup = QStringLiteral("vcs");
const QString clientVersionKey = QStringLiteral("clientVersion");

void enter(NDOPSettings& settings, std::initializer_list<QString> groups)
{
    for (const QString& group : groups)
        settings.beginGroup(group);
}

} // namespace

qint64 expireTime(const QString& officeType, const QString& frontVer)
{
    NDOPSettings settings;
    enter(settings, {officeType, expireTimeGroup});
    return settings.value(frontVer, 0).toLongLong();
}

void setExpireTime(const QString& officeType, const QString& frontVer, qint64 secondsSinceEpoch)
{
    NDOPSettings settings;
    enter(settings, {officeType, expireTimeGroup});
    settings.setValue(frontVer, secondsSinceEpoch);
}

bool mustUpgrade(const QString& officeType, const QString& frontVer)
{
    NDOPSettings settings;
    enter(settings, {officeType, mustUpgradeGroup});
    return settings.value(frontVer, false).toBool();
}

void setMustUpgrade(const QString& officeType, const QString& frontVer)
{
    NDOPSettings settings;
    enter(settings, {officeType, mustUpgradeGroup});
    settings.setValue(frontVer, true);
}

QString checkedVersion(const QString& officeType, const QString& frontVer)
{
    NDOPSettings settings;
    enter(settings, {versionCheckGroup, officeType, frontVer});
    return settings.value(clientVersionKey).toString();
}

void setCheckedVersion(const QString& officeType, const QString& frontVer, const QString& serverVersion)
{
    if (officeType.isEmpty() || frontVer.isEmpty())
        return;
    NDOPSettings settings;
    enter(settings, {versionCheckGroup, officeType, frontVer});
    settings.setValue(clientVersionKey, serverVersion);
}

void setUserMissTag(const QString& userId, bool missed)
{
    if (userId.isEmpty())
        return;
    nrt::NVLTCloudSettings settings;
    settings.beginGroup(QStringLiteral("usercenter"));
    settings.beginGroup(userId);
    settings.beginGroup(QStringLiteral("docsOfflinePage"));
    settings.setValue(QStringLiteral("userMissTag"), missed);
}

} // namespace npackagerecords
