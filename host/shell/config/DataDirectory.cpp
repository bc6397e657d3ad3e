#include "shell/config/DataDirectory.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryFile>

namespace shell {

Result<QString> prepareDataDirectory(const QString& wanted)
{
    const QString place =
        wanted.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) : wanted;
    const QString path = QDir::cleanPath(QDir::current().absoluteFilePath(place));
    const QFileInfo info(path);
    if (info.exists() && !info.isDir())
        return Error{QStringLiteral("data directory: %1 is not a directory").arg(path)};
    if (!QDir().mkpath(path))
        return Error{QStringLiteral("data directory: cannot make %1").arg(path)};

    // Permissions alone do not tell (read-only file systems, a full disk): try.
    QTemporaryFile probe(path + QStringLiteral("/.probe-XXXXXX"));
    if (!probe.open())
        return Error{QStringLiteral("data directory: cannot write to %1: %2").arg(path, probe.errorString())};
    return path;
}

} // namespace shell
