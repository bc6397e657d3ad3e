#include "offline/PackagePlace.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <climits>

namespace npackageplace {

namespace {

bool hasParentStep(const QString& position)
{
    const QString slashed = QString(position).replace(u'\\', u'/');
    return slashed.split(u'/').contains(QStringLiteral(".."));
}

} // namespace

QString resolvedRoot(const QString& root)
{
    const QFileInfo directory(root);
    if (const QString canonical = directory.canonicalFilePath(); !canonical.isEmpty())
        return canonical;
    const QString parent = directory.absolutePath();
    if (parent == directory.absoluteFilePath())
        return parent;
    return QDir::cleanPath(resolvedRoot(parent) + u'/' + directory.fileName());
}

std::optional<QString> pathOf(const QString& root, const QString& relativePos)
{
    if (root.isEmpty() || relativePos.contains(QChar::Null) || hasParentStep(relativePos))
        return std::nullopt;
    QString path = root;
    bool isThere = true;
    for (const QString& name : relativePos.split(u'/', Qt::SkipEmptyParts)) {
        if (name == QLatin1String("."))
            continue;
        path += u'/' + name;
        if (!isThere)
            continue;
        const QFileInfo step(path);
        if (step.isSymLink())
            return std::nullopt;
        isThere = step.exists();
    }
    if (QFile::encodeName(path).size() >= PATH_MAX)
        return std::nullopt;
    return QDir::toNativeSeparators(path);
}

} // namespace npackageplace
