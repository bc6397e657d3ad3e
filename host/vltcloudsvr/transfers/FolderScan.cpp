#include "vltcloudsvr/transfers/FolderScan.h"

#include "vltcloudsvr/transfers/DriveClient.h"
#include "vltcloudsvr/transfers/TargetDirectory.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <deque>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

namespace vlt::cloudsvr {
namespace {

struct Folder
{
    qint64 row = 0;
    QByteArray path;
};

struct DirectoryCloser
{
    void operator()(DIR* directory) const { ::closedir(directory); }
};
using Directory = std::unique_ptr<DIR, DirectoryCloser>;

Directory openDirectory(const QByteArray& path, bool followsLinks)
{
    FileDescriptor descriptor(
        ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | (followsLinks ? 0 : O_NOFOLLOW)));
    Directory directory(descriptor.isOpen() ? ::fdopendir(descriptor.get()) : nullptr);
    if (directory)
        descriptor.release();
    return directory;
}

/** Bytes that are no UTF-8 have no name in the drive. */
bool hasName(const QByteArray& bytes, const QString& name)
{
    return isDriveName(name) && name.toUtf8() == bytes;
}

} // namespace

Result<qint64> scanFolder(const QString& folder, const Transfer& pattern,
                          const std::function<qint64(const Transfer&)>& add)
{
    const QString clean = QDir::cleanPath(folder);
    const QString name = QFileInfo(clean).fileName();
    const Error ended{QStringLiteral("The queue of transfers cannot be written")};
    if (!QDir::isAbsolutePath(clean) || !isDriveName(name))
        return Error{QStringLiteral("\"%1\" is not a folder that can be uploaded").arg(folder)};
    if (!openDirectory(QFile::encodeName(clean), true))
        return Error{QStringLiteral("The folder %1 cannot be read: %2").arg(folder, systemError(errno))};

    Transfer top = pattern;
    top.kind = Transfer::Kind::Folder;
    top.name = name;
    top.path = clean;
    top.size = 0;
    const qint64 topRow = add(top);
    if (topRow == 0)
        return ended;
    std::deque<Folder> folders{{topRow, QFile::encodeName(clean)}};
    while (!folders.empty()) {
        const Folder current = std::move(folders.front());
        folders.pop_front();
        const Directory directory = openDirectory(current.path, current.row == topRow);
        while (const dirent* entry = directory ? ::readdir(directory.get()) : nullptr) {
            const QByteArray bytes(entry->d_name);
            struct stat info = {};
            if (bytes == "." || bytes == ".." ||
                ::fstatat(::dirfd(directory.get()), bytes.constData(), &info, AT_SYMLINK_NOFOLLOW) != 0 ||
                (!S_ISDIR(info.st_mode) && !S_ISREG(info.st_mode)))
                continue;
            const QByteArray path = current.path + '/' + bytes;
            Transfer row = pattern;
            row.kind = S_ISDIR(info.st_mode) ? Transfer::Kind::Folder : Transfer::Kind::File;
            row.name = QString::fromUtf8(bytes);
            row.path = QFile::decodeName(path);
            row.size = S_ISDIR(info.st_mode) ? 0 : info.st_size;
            row.parentRow = current.row;
            row.rootRow = topRow;
            row.remoteParent.clear();
            row.state = TransferState::Waiting;
            if (!hasName(bytes, row.name))
                row.problem = QStringLiteral("The name cannot be stored in the drive");
            else if (S_ISDIR(info.st_mode) && !openDirectory(path, false))
                row.problem = QStringLiteral("The folder cannot be read: ") + systemError(errno);
            if (!row.problem.isEmpty())
                row.state = TransferState::Failed;
            const qint64 id = add(row);
            if (id == 0)
                return ended;
            if (S_ISDIR(info.st_mode) && row.problem.isEmpty())
                folders.push_back({id, path});
        }
    }
    return topRow;
}

} // namespace vlt::cloudsvr
