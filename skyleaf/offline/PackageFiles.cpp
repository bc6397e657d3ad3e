#include "offline/PackageFiles.h"

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

bool hasParentStep(const QString& text)
{
    QString decoded = QUrl::fromPercentEncoding(text.toUtf8());
    decoded.replace(u'\\', u'/');
    return decoded.split(u'/').contains(QStringLiteral(".."));
}

} // namespace npackagefiles
