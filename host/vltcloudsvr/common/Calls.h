#pragma once

#include <QMap>
#include <QString>

/** What the service and its clients say to each other, without the transport. */
namespace vlt::cloudsvr {

enum class ResultCode {
    Ok = 0,
    BadArgument = 1,
    NotFound = 2,
    StorageError = 3,
    ArchiveError = 4,
    NetworkError = 5,
    UnsupportedFunction = 6
};

using Values = QMap<QString, QString>;

/** For whom a call is made, and where the documents service is reached. */
struct Caller
{
    QString userId;                 //!< empty: nobody is signed in
    QString localDataDir;           //!< of the user's packages; absolute
    QString apiUrl;                 //!< of the documents service; empty: none
    QMap<QString, QString> resolve; //!< "host" or "host:port" to "address:port"
    QString cookies{};              //!< of the user's session, "name=value; …"; never stored
};

struct CallResult
{
    ResultCode code = ResultCode::Ok;
    Values values;
};

/** A result with the code and, for people, the text as value "error". */
inline CallResult failure(ResultCode code, const QString& text)
{
    return {code, {{QStringLiteral("error"), text}}};
}

/** Functions of the service, methods of its "tavaIpcCall", and what it tells its clients. */
namespace names {

constexpr QLatin1String createDOPRootData{"createDOPRootData"};
constexpr QLatin1String removeDOPRootData{"removeDOPRootData"};
constexpr QLatin1String getDOPFileInfo{"getDOPFileInfo"};
constexpr QLatin1String updateDOPFileInfo{"updateDOPFileInfo"};
constexpr QLatin1String unzipDOPFile{"unzipDOPFile"};
constexpr QLatin1String downloadPlugin{"downloadDOPPluginOnRandomTime"};
/** Event {"pluginName", "version", "path"}: the version lies complete in the directory. */
constexpr QLatin1String pluginInstalled{"pluginInstalled"};

} // namespace names

} // namespace vlt::cloudsvr
