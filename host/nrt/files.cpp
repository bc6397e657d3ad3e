#include "nrt/files.h"

#include <QSaveFile>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nrt::files {
namespace {

constexpr qint64 firstPiece = 4096;

QString systemReason()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

QString notRegular()
{
    return QStringLiteral("it is not a regular file");
}

Reading failed(Fault fault, const QString& reason)
{
    return {{}, fault, reason};
}

Reading tooLarge(qint64 largest)
{
    return failed(Fault::TooLarge, QStringLiteral("it has more than %1 bytes").arg(largest));
}

int flagsOf(QIODevice::OpenMode mode)
{
    int flags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    if (!(mode & QIODevice::WriteOnly))
        return flags | O_RDONLY;
    flags |= O_CREAT | ((mode & QIODevice::ReadOnly) ? O_RDWR : O_WRONLY);
    return (mode & QIODevice::Append) ? flags | O_APPEND : flags;
}

int openPath(const QString& path, int flags)
{
    return path.contains(QChar::Null) ? (errno = ENOENT, -1)
                                      : ::open(QFile::encodeName(path).constData(), flags, 0666);
}

Reading inspectOpen(int descriptor, qint64 largest, struct stat& status)
{
    if (::fstat(descriptor, &status) != 0)
        return failed(Fault::Unreadable, systemReason());
    if (!S_ISREG(status.st_mode))
        return failed(Fault::NotRegular, notRegular());
    return status.st_size > largest ? tooLarge(largest) : Reading();
}

template <typename Use>
Reading atPath(const QString& path, Use use)
{
    const int descriptor = openPath(path, flagsOf(QIODevice::ReadOnly));
    if (descriptor < 0) {
        if (errno == ENXIO) // a socket, or a device that is not there
            return failed(Fault::NotRegular, notRegular());
        const bool isMissing = errno == ENOENT || errno == ENOTDIR;
        return failed(isMissing ? Fault::Missing : Fault::Unreadable, systemReason());
    }
    Reading reading = use(descriptor);
    ::close(descriptor);
    return reading;
}

} // namespace

Reading readOpen(int descriptor, qint64 largest)
{
    struct stat status = {};
    if (const Reading found = inspectOpen(descriptor, largest, status); !found)
        return found;
    // One byte more than expected shows the end of a file that did not grow. Some files of the system claim
    // to be empty.
    QByteArray bytes(int(std::max(qint64(status.st_size) + 1, std::min(firstPiece, largest + 1))),
                     Qt::Uninitialized);
    int filled = 0;
    while (true) {
        const ssize_t count = ::read(descriptor, bytes.data() + filled, std::size_t(bytes.size() - filled));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return failed(Fault::Unreadable, systemReason());
        filled += int(count);
        if (count == 0)
            break;
        if (filled > largest)
            return tooLarge(largest);
        if (filled == bytes.size())
            bytes.resize(int(std::min(2LL * filled, largest + 1)));
    }
    bytes.truncate(filled);
    return {bytes, Fault::None, {}};
}

Reading read(const QString& path, qint64 largest)
{
    return atPath(path, [largest](int descriptor) { return readOpen(descriptor, largest); });
}

Reading inspect(const QString& path, qint64 largest)
{
    return atPath(path, [largest](int descriptor) {
        struct stat status = {};
        return inspectOpen(descriptor, largest, status);
    });
}

QString open(QFile& file, const QString& path, QIODevice::OpenMode mode)
{
    const int descriptor = openPath(path, flagsOf(mode));
    if (descriptor < 0)
        return errno == ENXIO || errno == EISDIR ? notRegular() : systemReason();
    struct stat status = {};
    const bool isRegular = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    const bool isEmptied = isRegular && (mode & QIODevice::Truncate);
    if (!isRegular || (isEmptied && ::ftruncate(descriptor, 0) != 0)) {
        const QString reason = isRegular ? systemReason() : notRegular();
        ::close(descriptor);
        return reason;
    }
    if (file.open(descriptor, mode & ~QIODevice::Truncate, QFileDevice::AutoCloseHandle))
        return {};
    ::close(descriptor);
    return file.errorString();
}

QString replace(const QString& path, const QByteArray& bytes)
{
    struct stat present = {};
    if (::stat(QFile::encodeName(path).constData(), &present) == 0 && !S_ISREG(present.st_mode))
        return notRegular();
    QSaveFile file(path);
    // The bytes may still be in a buffer, and `commit` does not tell when a full disk refuses that.
    const bool isReplaced = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() &&
                            file.flush() && file.commit();
    return isReplaced ? QString() : file.errorString();
}

QString setAside(const QString& path)
{
    constexpr int tries = 9;
    struct stat status = {};
    if (::lstat(QFile::encodeName(path).constData(), &status) != 0 || S_ISDIR(status.st_mode))
        return {};
    for (int number = 1; number <= tries; ++number) {
        const QString aside =
            path + (number == 1 ? QStringLiteral(".corrupt") : QStringLiteral(".corrupt-%1").arg(number));
        if (std::rename(QFile::encodeName(path).constData(), QFile::encodeName(aside).constData()) == 0)
            return aside;
        if (errno == ENOENT)
            return {};
    }
    return {};
}

} // namespace nrt::files
