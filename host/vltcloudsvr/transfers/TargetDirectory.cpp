#include "vltcloudsvr/transfers/TargetDirectory.h"

#include "vltcloudsvr/transfers/DriveClient.h"

#include <QFile>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

namespace vlt::cloudsvr {
namespace {

constexpr int longestName = 255;
constexpr mode_t directoryMode = S_IRWXU | S_IRWXG | S_IRWXO;
constexpr mode_t fileMode = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
constexpr int openDirectory = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

QByteArray bytesOf(const QString& name)
{
    return QFile::encodeName(name);
}

} // namespace

QString systemError(int number)
{
    return QString::fromLocal8Bit(std::strerror(number));
}

QString numberedName(const QString& name, int number, bool isFile)
{
    const int dot = isFile ? name.lastIndexOf(u'.') : -1;
    QString suffix = QStringLiteral(" (%1)").arg(number);
    if (dot > 0)
        suffix += name.mid(dot);
    QString stem = dot > 0 ? name.left(dot) : name;
    while (!stem.isEmpty() && (bytesOf(stem).size() + bytesOf(suffix).size() > longestName ||
                               stem.at(stem.size() - 1).isHighSurrogate()))
        stem.chop(1);
    return stem + suffix;
}

Result<TargetDirectory> TargetDirectory::open(const QString& root, const QString& below)
{
    TargetDirectory target;
    target.m_directory.reset(::open(bytesOf(root).constData(), openDirectory));
    if (!target.m_directory.isOpen())
        return Error{QStringLiteral("The folder %1 cannot be opened: %2").arg(root, systemError(errno))};
    for (const QString& step : below.split(u'/', Qt::SkipEmptyParts)) {
        const QString error = target.makeDirectory(step);
        if (!error.isEmpty())
            return Error{error};
        target.m_directory.reset(
            ::openat(target.m_directory.get(), bytesOf(step).constData(), openDirectory | O_NOFOLLOW));
        if (!target.m_directory.isOpen())
            return Error{QStringLiteral("The folder %1 cannot be opened: %2").arg(step, systemError(errno))};
    }
    return target;
}

bool TargetDirectory::contains(const QString& name) const
{
    struct stat info = {};
    return ::fstatat(m_directory.get(), bytesOf(name).constData(), &info, AT_SYMLINK_NOFOLLOW) == 0;
}

QString TargetDirectory::makeDirectory(const QString& name) const
{
    if (!isDriveName(name))
        return QStringLiteral("\"%1\" cannot be the name of a folder").arg(name);
    if (::mkdirat(m_directory.get(), bytesOf(name).constData(), directoryMode) == 0 || errno == EEXIST)
        return {};
    return QStringLiteral("The folder %1 cannot be made: %2").arg(name, systemError(errno));
}

FileDescriptor TargetDirectory::openPart(const QString& name, bool isEmptied) const
{
    const int flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | (isEmptied ? O_TRUNC : 0);
    FileDescriptor part(::openat(m_directory.get(), bytesOf(name).constData(), flags, fileMode));
    struct stat info = {};
    if (part.isOpen() && (::fstat(part.get(), &info) != 0 || !S_ISREG(info.st_mode))) {
        part.reset();
        errno = EEXIST;
    }
    return part;
}

FileDescriptor TargetDirectory::openForReading(const QString& name) const
{
    return FileDescriptor(::openat(m_directory.get(), bytesOf(name).constData(),
                                   O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
}

void TargetDirectory::remove(const QString& name) const
{
    ::unlinkat(m_directory.get(), bytesOf(name).constData(), 0);
}

bool TargetDirectory::rename(const QString& from, const QString& to) const
{
    const int directory = m_directory.get();
    if (::renameat2(directory, bytesOf(from).constData(), directory, bytesOf(to).constData(),
                    RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    // A file system that cannot promise it.
    if (contains(to)) {
        errno = EEXIST;
        return false;
    }
    return ::renameat(directory, bytesOf(from).constData(), directory, bytesOf(to).constData()) == 0;
}

QString TargetDirectory::freeName(const QString& name, bool isFile) const
{
    QString candidate = name;
    for (int number = 1; contains(candidate); ++number)
        candidate = numberedName(name, number, isFile);
    return candidate;
}

} // namespace vlt::cloudsvr
