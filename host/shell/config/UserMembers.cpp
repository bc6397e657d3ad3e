#include "shell/config/UserMembers.h"

#include "shell/config/HostFile.h"
#include "shell/config/ObjectReader.h"

namespace shell {

void readUserMembers(ObjectReader& reader, HostUser& user)
{
    reader.read(QStringLiteral("userId"), user.userId);
    reader.read(QStringLiteral("loggedIn"), user.loggedIn);
    reader.read(QStringLiteral("sessionKey"), user.sessionKey);
    reader.read(QStringLiteral("cookies"), user.cookies);
    reader.read(QStringLiteral("localDataDir"), user.localDataDir);
    reader.read(QStringLiteral("cacheRoot"), user.cacheRoot);
}

QString mergeUser(const QJsonObject& members, HostUser& user)
{
    HostUser merged = user;
    ObjectReader reader(members, QString());
    readUserMembers(reader, merged);
    const QString error = reader.finish();
    if (error.isEmpty())
        user = merged;
    return error;
}

} // namespace shell
