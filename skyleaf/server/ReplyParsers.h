#pragma once

#include "server/NCloudDocsRequestTaskResult.h"

#include <QByteArray>
#include <QString>

#include <optional>

/** Reads the documents server's replies. A body of another shape gives empty members. */
namespace replyparsers {

struct OpenFileReply
{
    QString fileId;
    QString fileVersion;
    QString frontVer;
};
OpenFileReply parseOpenFileResult(const NCloudDocsRequestTaskResult& result);

struct VersionCheckReply
{
    QString clientVersion;
    QString officeType;
};
VersionCheckReply parseVcsResult(const NCloudDocsRequestTaskResult& result);

struct EnvConfigReply
{
    QString fileId;
    QString frontVer;     //!< that the server wants
    QString sentFrontVer; //!< that the request was sent with
};
EnvConfigReply parseEnvConfigResult(const NCloudDocsRequestTaskResult& result);

/** What a package-information reply says for one package. */
struct PackageInfoReply
{
    std::optional<bool> userMissTag; //!< empty: nothing is known
    bool mustUpgrade = false;        //!< of the version that was sent
    QString serverFrontVer;
    qint64 expireTime = 0; //!< of serverFrontVer, seconds since the epoch; below 1 for none
};
PackageInfoReply parsePackageInfo(const QByteArray& body, const QString& packageName);

/** Writes what a package-information reply says into the user's records. */
void handleResPckInfoResponse(const QString& officeType, const QByteArray& body, const QString& frontVer);

} // namespace replyparsers
