#include "vltcloudsvr/archive/TreeMerge.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

namespace vlt::cloudsvr {
namespace {

QFileInfoList childrenOf(const QString& directory)
{
    return QDir(directory).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                         QDir::NoDotAndDotDot);
}

bool isThere(const QFileInfo& info)
{
    return info.isSymLink() || info.exists();
}

QString conflict(const QFileInfo& source, const QFileInfo& destination)
{
    if (!isThere(destination))
        return {};
    if (destination.isSymLink() || source.isDir() != destination.isDir())
        return QStringLiteral("%1 is in the way").arg(destination.filePath());
    if (!source.isDir())
        return {};
    for (const QFileInfo& child : childrenOf(source.filePath())) {
        const QString error = conflict(child, QFileInfo(destination.filePath() + u'/' + child.fileName()));
        if (!error.isEmpty())
            return error;
    }
    return {};
}

QString move(const QFileInfo& source, const QString& destination)
{
    if (!source.isDir() || !QFileInfo::exists(destination)) {
        // Unlike QFile::rename, this replaces a file.
        return std::rename(QFile::encodeName(source.filePath()).constData(),
                           QFile::encodeName(destination).constData()) == 0
                   ? QString()
                   : QStringLiteral("cannot move to %1").arg(destination);
    }
    for (const QFileInfo& child : childrenOf(source.filePath())) {
        const QString error = move(child, destination + u'/' + child.fileName());
        if (!error.isEmpty())
            return error;
    }
    return {};
}

} // namespace

QString moveInto(const QString& source, const QString& destination)
{
    const QFileInfo from(source);
    const QString error = conflict(from, QFileInfo(destination));
    if (!error.isEmpty())
        return error;
    if (!QDir().mkpath(QFileInfo(destination).path()))
        return QStringLiteral("cannot make the directory of %1").arg(destination);
    return move(from, destination);
}

} // namespace vlt::cloudsvr
