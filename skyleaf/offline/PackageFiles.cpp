#include "offline/PackageFiles.h"

#include "base/NDocsLog.h"
#include "nrt/files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUrl>
#include <QVector>

namespace npackagefiles {

namespace {

QString withSlash(const QString& directory)
{
    return directory.endsWith(u'/') ? directory : directory + u'/';
}

/** Where an open file lies, whatever is at its path meanwhile. */
QString placeOf(const QFile& file)
{
    return QFileInfo(QStringLiteral("/proc/self/fd/%1").arg(file.handle())).symLinkTarget();
}

nrt::files::Reading readBelow(const QString& root, const QString& path, qint64 largest)
{
    using nrt::files::Fault;
    QFile file;
    const QString failure = nrt::files::open(file, path, QIODevice::ReadOnly);
    if (!failure.isEmpty())
        return {{}, QFileInfo::exists(path) ? Fault::Unreadable : Fault::Missing, failure};
    if (root.isEmpty() || !placeOf(file).startsWith(withSlash(root)))
        return {{}, Fault::NotRegular, QStringLiteral("it is not a file of the package")};
    return nrt::files::readOpen(file.handle(), largest);
}

} // namespace

std::optional<QByteArray> readWithin(const QString& directory, const QString& path, qint64 largest)
{
    const nrt::files::Reading file = readBelow(QFileInfo(directory).canonicalFilePath(), path, largest);
    if (file)
        return file.bytes;
    if (file.fault != nrt::files::Fault::Missing)
        ndocslog::warning(QStringLiteral("%1 is not used: %2").arg(path, file.reason),
                          "npackagefiles::readWithin");
    return std::nullopt;
}

bool isFileWithin(const QString& directory, const QString& path)
{
    const QString root = QFileInfo(directory).canonicalFilePath();
    const QFileInfo file(path);
    return !root.isEmpty() && file.isFile() && file.canonicalFilePath().startsWith(withSlash(root));
}

bool isPlaceWithin(const QString& directory, const QString& path)
{
    if (path.contains(QChar::Null) || hasParentStep(path))
        return false;
    const QString root = QDir::cleanPath(QFileInfo(directory).absoluteFilePath());
    QString present = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    if (!present.startsWith(root + u'/'))
        return false;
    // What exists of the way decides; a dangling link is a way out as well.
    while (present.size() > root.size()) {
        const QFileInfo step(present);
        if (step.isSymLink() && !step.exists())
            return false;
        if (step.exists()) {
            const QString canonicalRoot = QFileInfo(root).canonicalFilePath();
            return !canonicalRoot.isEmpty() && step.canonicalFilePath().startsWith(canonicalRoot + u'/');
        }
        present = step.path();
    }
    return true;
}

bool hasParentStep(const QString& text)
{
    QString decoded = QUrl::fromPercentEncoding(text.toUtf8());
    decoded.replace(u'\\', u'/');
    return decoded.split(u'/').contains(QStringLiteral(".."));
}

} // namespace npackagefiles
