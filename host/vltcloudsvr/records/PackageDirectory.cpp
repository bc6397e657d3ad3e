#include "vltcloudsvr/records/PackageDirectory.h"

#include "vltcloudsvr/records/RecordData.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <system_error>

namespace vlt::cloudsvr {
namespace {

const QString packagesFolder = QStringLiteral("/quillfile");

/** Packages are never reached through a link, so that nothing outside of them is touched. */
QString linkError(const QString& path)
{
    return QFileInfo(path).isSymLink() ? QStringLiteral("%1 is a symbolic link").arg(path) : QString();
}

} // namespace

Result<QString> packageRoot(const QString& localDataDir, const QString& localId)
{
    if (!QDir::isAbsolutePath(localDataDir) || localDataDir.contains(QChar::Null))
        return Error{QStringLiteral("there is no directory for local packages")};
    if (!isLocalId(localId))
        return Error{QStringLiteral("\"%1\" is not a local id").arg(localId)};
    const QString packages = QDir::cleanPath(localDataDir) + packagesFolder;
    const QString error = linkError(packages);
    if (!error.isEmpty())
        return Error{error};
    return QString(packages + u'/' + localId);
}

QString makePackage(const QString& root)
{
    for (const char* part : {"/sync", "/cache"}) {
        const QString directory = root + QLatin1String(part);
        for (const QString& path : {root, directory}) {
            const QString error = linkError(path);
            if (!error.isEmpty())
                return error;
        }
        if (!QDir().mkpath(directory))
            return QStringLiteral("cannot make %1").arg(directory);
    }
    return {};
}

QString removePackage(const QString& root)
{
    std::error_code error;
    std::filesystem::remove_all(QFile::encodeName(root).toStdString(), error);
    return error ? QStringLiteral("cannot remove %1: %2").arg(root, QString::fromStdString(error.message()))
                 : QString();
}

Result<QString> confinedPath(const QString& root, const QString& path)
{
    const QStringList wanted = path.split(u'/');
    if (!QDir::isAbsolutePath(path) || path.contains(QChar::Null) || wanted.contains(QStringLiteral("..")))
        return Error{QStringLiteral("\"%1\" is not a path inside the package").arg(path)};
    const QString clean = QDir::cleanPath(path);
    if (clean != root && !clean.startsWith(root + u'/'))
        return Error{QStringLiteral("\"%1\" is outside of the package").arg(path)};
    QString step = root;
    for (const QString& part : clean.mid(root.size()).split(u'/')) {
        if (!part.isEmpty())
            step += u'/' + part;
        const QString error = linkError(step);
        if (!error.isEmpty())
            return Error{error};
    }
    return clean;
}

} // namespace vlt::cloudsvr
