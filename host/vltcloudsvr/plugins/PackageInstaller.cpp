#include "vltcloudsvr/plugins/PackageInstaller.h"

#include "vltcloudsvr/archive/ZipExtractor.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace vlt::cloudsvr {
namespace {

constexpr int versionsKept = 3;
constexpr int versionsAtMost = 6;

// Hidden, so that nothing of it is taken for a plug-in or a version.
const QString incomingFolder = QStringLiteral(".incoming");
const QString unfinishedPrefix = QStringLiteral(".new-");
const QString replacedPrefix = QStringLiteral(".old-");

QString unique(const QString& prefix)
{
    return prefix + QUuid::createUuid().toString(QUuid::Id128);
}

bool rename(const QString& from, const QString& to)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

/** Brings what was written below a directory to the disk: the whole file system at once, or the directory. */
void toDisk(const QString& directory, int (*sync)(int))
{
    const int descriptor =
        ::open(QFile::encodeName(directory).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    sync(descriptor);
    ::close(descriptor);
}

/** Puts the unpacked version in its place; what is there is no complete version and makes way. */
bool publish(const QString& unfinished, const QString& plugin, const QString& version)
{
    const QString place = plugin + u'/' + version;
    const QString replaced = plugin + u'/' + unique(replacedPrefix);
    const bool hasMadeWay = !QFileInfo::exists(place) || rename(place, replaced);
    const bool isPublished = hasMadeWay && rename(unfinished, place);
    QDir(replaced).removeRecursively();
    return isPublished;
}

} // namespace

Result<QString> installPackage(const QString& zipFile, const QString& pluginsDir, const QString& name,
                               const QString& version, const std::atomic<bool>& isCancelled)
{
    const QString plugin = pluginsDir + u'/' + name;
    const QString unfinished = plugin + u'/' + unique(unfinishedPrefix);
    if (!QDir().mkpath(plugin))
        return Error{QStringLiteral("cannot make %1").arg(plugin)};
    QString error = extractZip(zipFile, unfinished, {}, isCancelled);
    if (error.isEmpty() && versionIn(unfinished) != version)
        error = QStringLiteral("the package says that it is version \"%1\"").arg(versionIn(unfinished));
    if (error.isEmpty()) {
        toDisk(unfinished, &::syncfs);
        if (!publish(unfinished, plugin, version))
            error = QStringLiteral("cannot put version %1 in its place").arg(version);
        toDisk(plugin, &::fsync);
    }
    if (error.isEmpty())
        return QString(plugin + u'/' + version);
    QDir(unfinished).removeRecursively();
    return Error{error};
}

void pruneVersions(const QString& pluginsDir, const QString& name, const QString& kept, const QDateTime& now)
{
    const QVector<InstalledVersion> versions = installedVersions(pluginsDir, name);
    int left = versions.size();
    for (int i = versions.size() - 1; i > 0 && left > versionsKept; --i) {
        const InstalledVersion& old = versions.at(i);
        const bool isRecent = QFileInfo(old.directory).lastModified().addDays(1) > now;
        if (old.version == kept || (isRecent && left <= versionsAtMost))
            continue;
        // Out of sight first: a version is there whole or not at all.
        const QString removed = pluginsDir + u'/' + name + u'/' + unique(replacedPrefix);
        if (rename(old.directory, removed)) {
            QDir(removed).removeRecursively();
            --left;
        }
    }
}

QString incomingFile(const QString& pluginsDir, const QString& name)
{
    const QString directory = pluginsDir + u'/' + incomingFolder;
    QDir().mkpath(directory);
    return directory + u'/' + name + u'-' + QUuid::createUuid().toString(QUuid::Id128) +
           QStringLiteral(".zip");
}

void clearLeftovers(const QString& pluginsDir)
{
    constexpr QDir::Filters folders = QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot | QDir::NoSymLinks;
    QDir(pluginsDir + u'/' + incomingFolder).removeRecursively();
    for (const QString& name : QDir(pluginsDir).entryList(folders)) {
        const QDir plugin(pluginsDir + u'/' + name);
        for (const QString& leftover :
             plugin.entryList({unfinishedPrefix + u'*', replacedPrefix + u'*'}, folders))
            QDir(plugin.filePath(leftover)).removeRecursively();
    }
}

} // namespace vlt::cloudsvr
