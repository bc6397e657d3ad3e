#include "offline/FileDescriptor.h"

#include <QList>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

FileDescriptor openFolder(const QByteArray& path, bool make)
{
    constexpr int flags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    if (!path.startsWith('/') && !path.isEmpty())
        return FileDescriptor();
    FileDescriptor folder(::open("/", flags));
    for (const QByteArray& name : path.split('/')) {
        if (name.isEmpty())
            continue;
        FileDescriptor next(::openat(folder.get(), name.constData(), flags));
        // Another task may make it first.
        if (!next.isOpen() && errno == ENOENT && make &&
            (::mkdirat(folder.get(), name.constData(), 0777) == 0 || errno == EEXIST))
            next = FileDescriptor(::openat(folder.get(), name.constData(), flags));
        if (!next.isOpen())
            return FileDescriptor();
        folder = std::move(next);
    }
    return folder;
}
