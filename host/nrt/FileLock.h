#pragma once

#include <QString>

namespace nrt {

/**
 * An exclusive lock on a file, shared with other processes; made when missing and never removed. The system
 * releases it when its holder is killed, at whatever moment.
 */
class FileLock
{
public:
    /** Waits up to `timeoutMs` for the lock. */
    FileLock(const QString& path, int timeoutMs);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    bool isLocked() const { return m_descriptor >= 0; }

private:
    int m_descriptor = -1;
};

/**
 * Removes the lock file that a process leaves behind when it is killed right after making it. It names no
 * owner, so QLockFile would wait half a minute for it. `graceMs` is how long an owner that lives may take to
 * name itself.
 */
void removeAbandonedLockFile(const QString& path, int graceMs = 1000);

} // namespace nrt
