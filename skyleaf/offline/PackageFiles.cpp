#include "offline/PackageFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUrl>
#include <QVector>

namespace npackagefiles {

std::optional<QByteArray> readWhole(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return std::nullopt;
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return std::nullopt;
    return bytes;
}

bool isFileWithin(const QString& directory, const QString& path)
{
    const QString root = QFileInfo(directory).canonicalFilePath();
    const QFileInfo file(path);
    return !root.isEmpty() && file.isFile() &&
           file.canonicalFilePath().startsWith(root.endsWith(u'/') ? root : root + u'/');
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
