#include "vltcloudsvr/transfers/SourceFile.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

namespace vlt::cloudsvr {
namespace {

qint64 modifiedOf(const struct stat& info)
{
    constexpr qint64 nanoseconds = 1'000'000'000;
    return info.st_mtim.tv_sec * nanoseconds + info.st_mtim.tv_nsec;
}

} // namespace

bool SourceFile::isUnchanged() const
{
    struct stat info = {};
    return ::fstat(file.get(), &info) == 0 && info.st_size == size && modifiedOf(info) == modified;
}

long SourceFile::read(char* data, std::size_t count, qint64 offset) const
{
    long got = 0;
    do {
        got = ::pread(file.get(), data, count, offset);
    } while (got < 0 && errno == EINTR);
    return got;
}

Result<SourceFile> openSource(const QString& path, bool followsLinks)
{
    // A FIFO must not be waited for.
    const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | (followsLinks ? 0 : O_NOFOLLOW);
    SourceFile source;
    source.file.reset(::open(QFile::encodeName(path).constData(), flags));
    struct stat info = {};
    if (!source.file.isOpen() || ::fstat(source.file.get(), &info) != 0)
        return Error{
            QStringLiteral("The file cannot be read: %1").arg(QString::fromLocal8Bit(std::strerror(errno)))};
    if (S_ISDIR(info.st_mode))
        return Error{QStringLiteral("It is a folder, not a file")};
    if (!S_ISREG(info.st_mode))
        return Error{QStringLiteral("It is not a regular file")};
    source.size = info.st_size;
    source.modified = modifiedOf(info);
    ::posix_fadvise(source.file.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
    return source;
}

} // namespace vlt::cloudsvr
