#include "nrt/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <cerrno>

namespace nrt {
namespace {

constexpr int retryMs = 1;

constexpr int cannotOpen = -1;
constexpr int lockedByAnother = -2;

/** The descriptor that holds the lock, or one of the negative values above. */
int tryLock(const QString& path, int flags)
{
    // A lock is never read: whatever else is in its place is locked as well, without waiting for its other
    // end.
    constexpr int always = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    int descriptor = ::open(QFile::encodeName(path).constData(), flags | always, 0600);
    if (descriptor < 0 && errno == EISDIR)
        descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | always);
    if (descriptor < 0)
        return cannotOpen;
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        return descriptor;
    ::close(descriptor);
    return lockedByAnother;
}

} // namespace

FileLock::FileLock(const QString& path, int timeoutMs)
{
    QElapsedTimer waited;
    waited.start();
    while ((m_descriptor = tryLock(path, O_RDWR | O_CREAT)) == lockedByAnother &&
           waited.elapsed() < timeoutMs)
        QThread::msleep(retryMs);
}

FileLock::~FileLock()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

void removeAbandonedLockFile(const QString& path, int graceMs)
{
    QElapsedTimer waited;
    waited.start();
    while (QFileInfo::exists(path) && QFileInfo(path).size() == 0) {
        if (waited.elapsed() < graceMs) {
            QThread::msleep(retryMs);
            continue;
        }
        const int descriptor = tryLock(path, O_RDWR);
        if (descriptor < 0)
            return; // its owner lives, or it is gone
        QFile::remove(path);
        ::close(descriptor);
    }
}

} // namespace nrt
