#include "nrt/dirs.h"

#include <algorithm>
#include <array>

#include <QDir>
#include <QFileInfo>

#include "nrt/RuntimeSetup.h"

namespace nrt::dirs {
namespace {

/** The path with the symbolic links of its existing part resolved. */
QString resolved(const QString& path)
{
    QString existing = QDir::cleanPath(QDir::fromNativeSeparators(path));
    QString rest;
    while (!QFileInfo::exists(existing) && !QFileInfo(existing).isRoot()) {
        const QFileInfo info(existing);
        if (info.isSymLink()) // a link to a place that does not exist yet
            return resolved(info.symLinkTarget()) + rest;
        rest.prepend(QLatin1Char('/') + info.fileName());
        existing = info.path();
    }
    const QString canonical = QFileInfo(existing).canonicalFilePath();
    return canonical == QLatin1String("/") ? rest : canonical + rest;
}

bool isWithin(const QString& path, const QString& directory)
{
    return path == directory || path.startsWith(directory + QLatin1Char('/'));
}

} // namespace

QString maravelHome()
{
    return runtime::setup()->dataDir + QStringLiteral("/home");
}

QString resourceDir(const QString& module)
{
    return runtime::setup()->resourceRoot + QLatin1Char('/') + module;
}

QString officeInstallRoot()
{
    return runtime::setup()->installRoot;
}

QString frameworksDir()
{
    return runtime::setup()->libraryDir;
}

bool inBlackDownloadDir(const QString& path)
{
    static const std::array<QLatin1String, 12> systemDirectories = {
        QLatin1String("/bin"),  QLatin1String("/boot"),  QLatin1String("/dev"),   QLatin1String("/etc"),
        QLatin1String("/lib"),  QLatin1String("/lib32"), QLatin1String("/lib64"), QLatin1String("/proc"),
        QLatin1String("/sbin"), QLatin1String("/sys"),   QLatin1String("/usr"),   QLatin1String("/opt")};

    if (path.isEmpty() || QDir::isRelativePath(path) || path.contains(QChar::Null))
        return true;
    const QString target = resolved(path);
    return isWithin(target, resolved(officeInstallRoot())) ||
           std::any_of(systemDirectories.begin(), systemDirectories.end(),
                       [&](QLatin1String directory) { return isWithin(target, QString(directory)); });
}

} // namespace nrt::dirs
