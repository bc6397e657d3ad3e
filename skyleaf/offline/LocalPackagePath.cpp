#include "offline/LocalPackagePath.h"

#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioCloudSvrProxy.h"

#include <QDir>

namespace {

bool isPlainName(const QString& name)
{
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") &&
           !name.contains(u'/') && !name.contains(u'\\') && !name.contains(QChar::Null);
}

} // namespace

QString localPckRootPath(const QString& localId)
{
    const NHelioApplication* application = NHelioApplication::instance();
    const NHelioCloudSvrProxy* proxy = application ? application->cloudSvrProxy() : nullptr;
    NHelioUserInfo user;
    if (!isPlainName(localId) || !proxy || !proxy->currentUserInfo(user) || user.localDataDir.isEmpty())
        return {};
    const QChar separator = QDir::separator();
    return user.localDataDir + separator + QStringLiteral("quillfile") + separator + localId;
}
