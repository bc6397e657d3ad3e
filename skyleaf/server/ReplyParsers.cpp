#include "server/ReplyParsers.h"

#include "base/NJsonNumber.h"
#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioCloudSvrProxy.h"
#include "proxy/NDOPConfig.h"
#include "proxy/NPackageRecords.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace replyparsers {
namespace {

QJsonObject objectOf(const QByteArray& body)
{
    return QJsonDocument::fromJson(body).object();
}

QJsonObject elementFor(const QJsonArray& elements, const QString& packageName)
{
    for (const QJsonValue& element : elements) {
        const QJsonObject object = element.toObject();
        const QJsonValue officeType = object.value(QLatin1String("office_type"));
        if (officeType.isString() && officeType.toString() == packageName)
            return object;
    }
    return {};
}

QString signedInUser()
{
    const NHelioApplication* application = NHelioApplication::instance();
    const NHelioCloudSvrProxy* proxy = application ? application->cloudSvrProxy() : nullptr;
    NHelioUserInfo user;
    return proxy && proxy->currentUserInfo(user) && user.loggedIn ? user.userId : QString();
}

} // namespace

OpenFileReply parseOpenFileResult(const NCloudDocsRequestTaskResult& result)
{
    const QJsonObject environment =
        objectOf(result.data).value(QLatin1String("window.__VLTENV__")).toObject();
    if (environment.isEmpty())
        return {};
    return {result.fileId, environment.value(QLatin1String("file_version")).toString(), result.frontVer};
}

VersionCheckReply parseVcsResult(const NCloudDocsRequestTaskResult& result)
{
    const QJsonObject reply = objectOf(result.data);
    return {reply.value(QLatin1String("client_version")).toString(),
            reply.value(QLatin1String("office_type")).toString()};
}

EnvConfigReply parseEnvConfigResult(const NCloudDocsRequestTaskResult& result)
{
    const QJsonObject config = objectOf(result.data).value(QLatin1String("config")).toObject();
    return {result.fileId, config.value(QLatin1String("front_ver")).toString(), result.frontVer};
}

PackageInfoReply parsePackageInfo(const QByteArray& body, const QString& packageName)
{
    constexpr int missedTag = 10000;
    PackageInfoReply reply;
    const QJsonObject object = objectOf(body);
    const QJsonValue outcome = object.value(QLatin1String("result"));
    if (!outcome.isString())
        return reply;
    const bool ok = outcome.toString() == QLatin1String("ok");
    const QJsonValue number = object.value(QLatin1String("errno"));
    const bool hasMissedTag = number.isDouble() && number.toDouble() == missedTag;
    reply.userMissTag = !ok && hasMissedTag && outcome.toString() == QLatin1String("MissedTag");
    if (!ok)
        return reply;

    const QJsonObject element = elementFor(object.value(QLatin1String("data")).toArray(), packageName);
    reply.mustUpgrade = element.value(QLatin1String("must_upgrade")).toBool(false);
    const QJsonObject front = element.value(QLatin1String("front_data")).toObject();
    const QJsonValue expireTime = front.value(QLatin1String("expire_time"));
    const QJsonValue version = front.value(QLatin1String("front_ver"));
    if (expireTime.isDouble() && version.isString()) {
        reply.expireTime = wholeNumber(expireTime, 0);
        reply.serverFrontVer = version.toString();
    }
    return reply;
}

void handleResPckInfoResponse(const QString& officeType, const QByteArray& body, const QString& frontVer)
{
    if (officeType.isEmpty() || body.isEmpty())
        return;
    const PackageInfoReply reply =
        parsePackageInfo(body, NDocsOfflinePage::NDOPConfig::instance().packageName(officeType));
    if (reply.userMissTag)
        npackagerecords::setUserMissTag(signedInUser(), *reply.userMissTag);
    if (reply.expireTime >= 1 && !reply.serverFrontVer.isEmpty())
        npackagerecords::setExpireTime(officeType, reply.serverFrontVer, reply.expireTime);
    if (reply.mustUpgrade && !frontVer.isEmpty())
        npackagerecords::setMustUpgrade(officeType, frontVer);
}

} // namespace replyparsers
