#include "offline/LinklessFiles.h"

#include "offline/FileDescriptor.h"

#include <QFile>
#include <QMutex>

#include <array>
#include <atomic>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nlinklessfiles {

namespace {

constexpr int deepestTree = 512; //!< levels; each holds a descriptor while it is removed

/** A name in an open folder. */
struct Place
{
    explicit Place(const QString& path, bool makeParents = false)
    {
        const QByteArray whole = QFile::encodeName(path);
        const int slash = whole.lastIndexOf('/');
        name = whole.mid(slash + 1);
        if (slash >= 0 && !name.isEmpty())
            folder = openFolder(whole.left(slash), makeParents);
    }

    FileDescriptor folder; //!< not open when there is no such folder
    QByteArray name;
};

/** A file open for reading; or why it is not. */
struct OpenFile
{
    FileDescriptor descriptor;
    struct stat status = {};
    nrt::files::Reading failure; //!< of none when it is open
};

OpenFile openRegular(const Place& place)
{
    using nrt::files::Fault;
    OpenFile file;
    const auto fail = [&file](Fault fault, const QString& reason) {
        file.descriptor.close();
        file.failure = {{}, fault, reason};
    };
    if (place.folder.isOpen())
        file.descriptor = FileDescriptor(::openat(place.folder.get(), place.name.constData(),
                                                  O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.descriptor.isOpen())
        fail(place.folder.isOpen() && errno != ENOENT ? Fault::Unreadable : Fault::Missing,
             QStringLiteral("it cannot be opened"));
    else if (::fstat(file.descriptor.get(), &file.status) != 0 || !S_ISREG(file.status.st_mode))
        fail(Fault::NotRegular, QStringLiteral("it is not a regular file"));
    else if (file.status.st_nlink > 1)
        fail(Fault::NotRegular, QStringLiteral("it is a file of elsewhere as well"));
    return file;
}

/** The content that a file will have: written beside it under a name of its own, gone unless committed. */
class Replacement
{
public:
    explicit Replacement(const Place& place)
        : m_place(place)
    {
        struct stat old = {};
        const bool exists =
            ::fstatat(place.folder.get(), place.name.constData(), &old, AT_SYMLINK_NOFOLLOW) == 0;
        if (exists ? !isReplaceable(old) : errno != ENOENT)
            return;
        static std::atomic<unsigned> count{0};
        constexpr int tries = 100; // names that an earlier process left behind
        for (int i = 0; i < tries && !m_file.isOpen(); ++i) {
            m_name = QByteArrayLiteral(".writing-") + QByteArray::number(::getpid()) + '-' +
                     QByteArray::number(++count);
            m_file = FileDescriptor(::openat(place.folder.get(), m_name.constData(),
                                             O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
            if (!m_file.isOpen() && errno != EEXIST)
                break;
        }
        if (!m_file.isOpen())
            m_name.clear(); // it is another one's
        else if (exists)
            ::fchmod(m_file.get(), old.st_mode & 0777);
    }
    ~Replacement()
    {
        if (!m_isCommitted && !m_name.isEmpty())
            ::unlinkat(m_place.folder.get(), m_name.constData(), 0);
    }
    Q_DISABLE_COPY(Replacement)

    bool isOpen() const { return m_file.isOpen(); }

    bool write(const QByteArray& bytes)
    {
        for (int done = 0; done < bytes.size();) {
            const ssize_t count =
                ::write(m_file.get(), bytes.constData() + done, std::size_t(bytes.size() - done));
            if (count < 0 && errno != EINTR)
                return false;
            done += static_cast<int>(qMax<ssize_t>(count, 0));
        }
        return true;
    }

    bool copyFrom(int source, qint64 size)
    {
        while (size > 0) {
            const ssize_t count =
                ::copy_file_range(source, nullptr, m_file.get(), nullptr, std::size_t(size), 0);
            if (count < 0 && errno == EINTR)
                continue;
            if (count <= 0)
                return false;
            size -= count;
        }
        return true;
    }

    bool commit()
    {
        m_isCommitted = m_file.close() && ::renameat(m_place.folder.get(), m_name.constData(),
                                                     m_place.folder.get(), m_place.name.constData()) == 0;
        return m_isCommitted;
    }

private:
    bool isReplaceable(const struct stat& old) const
    {
        return S_ISREG(old.st_mode) &&
               ::faccessat(m_place.folder.get(), m_place.name.constData(), W_OK, 0) == 0;
    }

    const Place& m_place;
    QByteArray m_name;
    FileDescriptor m_file;
    bool m_isCommitted = false;
};

bool replace(const Place& place, const QByteArray& bytes)
{
    Replacement replacement(place);
    return replacement.isOpen() && replacement.write(bytes) && replacement.commit();
}

bool isMissing(const Place& place)
{
    struct stat status = {};
    return ::fstatat(place.folder.get(), place.name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0 &&
           errno == ENOENT;
}

/** Files share a few locks. */
QMutex& changeLock(const QString& path)
{
    static std::array<QMutex, 32> locks;
    return locks[qHash(path) % locks.size()];
}

bool removeTree(int parent, const char* name, int depth)
{
    FileDescriptor folder(::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder.isOpen() || depth > deepestTree)
        return false;
    DIR* const entries = ::fdopendir(folder.get());
    if (!entries)
        return false;
    folder.release();
    const int here = ::dirfd(entries);
    bool ok = true;
    while (const dirent* entry = ::readdir(entries)) {
        const QByteArray child(entry->d_name);
        if (child == "." || child == ".." || ::unlinkat(here, child.constData(), 0) == 0)
            continue;
        ok = removeTree(here, child.constData(), depth + 1) && ok;
    }
    ::closedir(entries);
    return ok && ::unlinkat(parent, name, AT_REMOVEDIR) == 0;
}

} // namespace

nrt::files::Reading readFile(const QString& path, qint64 largest)
{
    const OpenFile file = openRegular(Place(path));
    return file.descriptor.isOpen() ? nrt::files::readOpen(file.descriptor.get(), largest) : file.failure;
}

bool makeFolder(const QString& path)
{
    return openFolder(QFile::encodeName(path), true).isOpen();
}

bool makeParentFolder(const QString& path)
{
    return Place(path, true).folder.isOpen();
}

bool writeFile(const QString& path, const QByteArray& bytes)
{
    const QMutexLocker locker(&changeLock(path));
    const Place place(path);
    return place.folder.isOpen() && replace(place, bytes);
}

bool changeFile(const QString& path, const std::function<QByteArray(const QByteArray& old)>& change)
{
    const QMutexLocker locker(&changeLock(path));
    const Place place(path);
    if (!place.folder.isOpen())
        return false;
    if (isMissing(place))
        return replace(place, change({}));
    const nrt::files::Reading old = readFile(path);
    return old && replace(place, change(old.bytes));
}

bool appendToFile(const QString& path, const QByteArray& bytes)
{
    const QMutexLocker locker(&changeLock(path));
    const Place place(path);
    if (!place.folder.isOpen())
        return false;
    if (isMissing(place))
        return replace(place, bytes);
    const OpenFile old = openRegular(place);
    if (!old.descriptor.isOpen())
        return false;
    Replacement replacement(place);
    return replacement.isOpen() && replacement.copyFrom(old.descriptor.get(), old.status.st_size) &&
           replacement.write(bytes) && replacement.commit();
}

bool removeFile(const QString& path)
{
    const Place place(path);
    return place.folder.isOpen() && ::unlinkat(place.folder.get(), place.name.constData(), 0) == 0;
}

bool removeFolder(const QString& path)
{
    const Place place(path);
    return place.folder.isOpen() && removeTree(place.folder.get(), place.name.constData(), 0);
}

} // namespace nlinklessfiles
