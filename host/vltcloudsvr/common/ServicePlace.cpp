#include "vltcloudsvr/common/ServicePlace.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace vlt::cloudsvr {
namespace {

constexpr int longestSocketPath = sizeof(sockaddr_un::sun_path) - 1;

bool isOwnPrivateDirectory(const QString& path)
{
    struct stat info = {};
    return ::lstat(QFile::encodeName(path).constData(), &info) == 0 && S_ISDIR(info.st_mode) &&
           info.st_uid == ::geteuid() && (info.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

QString socketFallbackDirectory()
{
    const QString runtime = QFile::decodeName(qgetenv("XDG_RUNTIME_DIR"));
    if (QDir::isAbsolutePath(runtime) && isOwnPrivateDirectory(runtime))
        return runtime + QStringLiteral("/vltcloudsvr");
    return QDir::tempPath() + QStringLiteral("/vltcloudsvr-%1").arg(::geteuid());
}

} // namespace

QString ServicePlace::logPath() const
{
    return dataDir + QStringLiteral("/vltcloudsvr.log");
}

QString ServicePlace::recordsPath() const
{
    return dataDir + QStringLiteral("/vltcloudsvr.sqlite");
}

QString ServicePlace::transfersPath() const
{
    return dataDir + QStringLiteral("/vltcloudsvr-transfers.sqlite");
}

QString ServicePlace::pluginsDir() const
{
    return dataDir + QStringLiteral("/plugins");
}

ServicePlace placeOf(const QString& dataDir)
{
    QDir().mkpath(dataDir);
    const QString canonical = QFileInfo(dataDir).canonicalFilePath();
    const QString path = canonical.isEmpty() ? QDir::cleanPath(QDir().absoluteFilePath(dataDir)) : canonical;
    ServicePlace place{path, path + QStringLiteral("/vltcloudsvr.sock"),
                       path + QStringLiteral("/vltcloudsvr.lock")};
    if (QFile::encodeName(place.socketPath).size() > longestSocketPath) {
        const QByteArray key =
            QCryptographicHash::hash(QFile::encodeName(path), QCryptographicHash::Sha256).toHex().left(32);
        place.socketPath =
            socketFallbackDirectory() + u'/' + QString::fromLatin1(key) + QStringLiteral(".sock");
    }
    return place;
}

QString prepareSocketDirectory(const ServicePlace& place)
{
    if (QFile::encodeName(place.socketPath).size() > longestSocketPath)
        return QStringLiteral("the path %1 is too long for a socket").arg(place.socketPath);
    const QString directory = QFileInfo(place.socketPath).path();
    if (directory == place.dataDir)
        return {};
    ::mkdir(QFile::encodeName(directory).constData(), S_IRWXU);
    return isOwnPrivateDirectory(directory)
               ? QString()
               : QStringLiteral("%1 is not a directory of this user alone").arg(directory);
}

bool isServed(const ServicePlace& place)
{
    const int descriptor =
        ::open(QFile::encodeName(place.lockPath).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0)
        return false;
    // A shared lock: two that look at the same time do not take each other for the service.
    const bool isFree = ::flock(descriptor, LOCK_SH | LOCK_NB) == 0;
    ::close(descriptor);
    return !isFree;
}

} // namespace vlt::cloudsvr
