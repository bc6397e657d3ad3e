#include "vltcloudsvr/transfers/HashPipe.h"
#include "vltcloudsvr/transfers/TargetDirectory.h"
#include "vltcloudsvr/transfers/TransferWork.h"

#include <QFileInfo>

#include <cerrno>
#include <optional>
#include <sys/stat.h>

namespace vlt::cloudsvr {
namespace {

constexpr int statusRange = 416;
constexpr int deepest = 200;

TransferEnd targetFailed(const QString& text, int error = 0)
{
    return TransferEnd::failed(error == ENOSPC || error == EDQUOT ? QStringLiteral("diskFull")
                                                                  : QStringLiteral("target"),
                               text, error == ENOSPC ? QStringLiteral("ENOSPC") : QString());
}

TransferEnd writeFailed(int error)
{
    return targetFailed(QStringLiteral("The file cannot be written: ") + systemError(error), error);
}

TransferEnd storageFailed()
{
    return endLater(QStringLiteral("storage"), QStringLiteral("The queue of transfers cannot be written"));
}

TransferEnd badName(const QString& name)
{
    return TransferEnd::failed(
        QStringLiteral("name"),
        QStringLiteral("\"%1\" cannot be the name of a file or folder here").arg(name.left(64)));
}

/** An absolute path of what lies in a target directory. */
QString pathIn(const Transfer& row, const QString& name)
{
    QString path = row.root;
    if (!path.endsWith(u'/'))
        path += u'/';
    if (!row.below.isEmpty())
        path += row.below + u'/';
    return path + name;
}

/** The download of one file into an open directory. */
class FileDownload
{
public:
    FileDownload(TransferWork& work, const TargetDirectory& directory)
        : m_work(work)
        , m_directory(directory)
        , m_part(partName(work.row.name, work.partSuffix))
    {
    }

    TransferEnd run()
    {
        if (wasPlaced())
            return finished();
        if (const auto end = takePart())
            return *end;
        if (m_from == 0 || m_from < m_work.row.size) {
            if (const auto end = receive())
                return *end;
        }
        if (m_sum.finish() != m_work.row.sha1) {
            m_directory.remove(m_part);
            return endLater(QStringLiteral("sha1Mismatch"),
                            QStringLiteral("Something else arrived than the file"));
        }
        return place();
    }

private:
    using MaybeEnd = std::optional<TransferEnd>;

    Transfer& row() { return m_work.row; }

    TransferEnd finished()
    {
        TransferEnd end;
        end.path = row().path;
        end.sha1 = row().sha1;
        end.size = row().size;
        return end;
    }

    /** Whether an earlier process ended right after the file had got its name. */
    bool wasPlaced()
    {
        if (row().path.isEmpty() || row().sha1.isEmpty() || m_directory.contains(m_part))
            return false;
        m_file = m_directory.openForReading(QFileInfo(row().path).fileName());
        const bool isIt = m_file.isOpen() && sumUp() == row().size && m_sum.finish() == row().sha1;
        m_file.reset();
        m_sum.reset();
        return isIt;
    }

    /** Adds the bytes of the open file to the sum; answers how many. */
    qint64 sumUp()
    {
        struct stat info = {};
        qint64 offset = 0;
        if (::fstat(m_file.get(), &info) != 0 || !S_ISREG(info.st_mode) || info.st_size > row().size)
            return -1;
        while (true) {
            const long got = ::pread(m_file.get(), m_work.buffer.data(), m_work.buffer.size(), offset);
            if (got <= 0 || m_work.progress.isStopped)
                return got == 0 ? offset : -1;
            m_sum.add(m_work.buffer.data(), std::size_t(got));
            offset += got;
        }
    }

    /** Opens the part; what is in it counts when it is known of which content it is. */
    MaybeEnd takePart()
    {
        m_file = m_directory.openPart(m_part, row().sha1.isEmpty());
        if (!m_file.isOpen())
            return writeFailed(errno);
        m_from = row().sha1.isEmpty() ? 0 : sumUp();
        if (m_from < 0) {
            m_from = 0;
            m_sum.reset();
        }
        m_work.progress.done = m_from;
        return m_work.progress.isStopped ? MaybeEnd(stopped()) : MaybeEnd();
    }

    MaybeEnd receive()
    {
        auto content = m_work.drive.beginContent(row().remoteId, row().history, m_from, row().sha1);
        if (!content && content.error().status == statusRange) {
            if (const auto end = beginAnew())
                return end;
            content = m_work.drive.beginContent(row().remoteId, row().history, 0, {});
        }
        if (!content)
            return failed(endOf(content.error()));
        if (content->from != m_from) {
            if (content->from != 0) {
                m_work.link.close();
                return endLater(QStringLiteral("badAnswer"),
                                QStringLiteral("The service sent another range than it was asked for"));
            }
            if (const auto end = beginAnew())
                return end;
        }
        row().size = content->size;
        row().sha1 = content->sha1;
        m_work.progress.size = content->size;
        // From here on what is in the part is known to be of this content.
        if (m_from == 0 && content->size > largestSmallFile) {
            if (::ftruncate(m_file.get(), 0) != 0)
                return writeFailed(errno);
            if (!m_work.journal.notePlace(row()))
                return storageFailed();
        }
        return receiveBytes();
    }

    MaybeEnd beginAnew()
    {
        m_from = 0;
        m_sum.reset();
        m_work.progress.done = 0;
        return ::ftruncate(m_file.get(), 0) == 0 ? MaybeEnd() : MaybeEnd(writeFailed(errno));
    }

    MaybeEnd receiveBytes()
    {
        HashPipe pipe(m_sum, row().size - m_from > largestSmallFile);
        for (qint64 offset = m_from; offset < row().size;) {
            char* piece = pipe.piece();
            const auto got = m_work.link.receiveBody(piece, HashPipe::pieceSize);
            if (!got)
                return failed(endOf(DriveClient::errorOf(got.error())));
            pipe.add(*got);
            for (std::size_t written = 0; written < *got;) {
                const long count =
                    ::pwrite(m_file.get(), piece + written, *got - written, offset + qint64(written));
                if (count < 0 && errno == EINTR)
                    continue;
                if (count <= 0) {
                    const int error = errno;
                    m_work.link.close();
                    return writeFailed(error);
                }
                written += std::size_t(count);
            }
            offset += qint64(*got);
            m_work.progress.done = offset;
        }
        return {};
    }

    TransferEnd failed(const TransferEnd& end)
    {
        if (end.kind == TransferEnd::Kind::Stopped && m_work.progress.isStopped)
            return stopped();
        if (end.kind == TransferEnd::Kind::Failed)
            m_directory.remove(m_part);
        return end;
    }

    TransferEnd stopped()
    {
        m_directory.remove(m_part);
        TransferEnd end;
        end.kind = TransferEnd::Kind::Stopped;
        return end;
    }

    TransferEnd place()
    {
        m_file.reset();
        while (true) {
            const QString name = m_directory.freeName(row().name, true);
            row().path = pathIn(row(), name);
            if (!m_work.journal.notePlace(row()))
                return storageFailed();
            if (m_directory.rename(m_part, name))
                return finished();
            if (errno != EEXIST)
                return writeFailed(errno);
        }
    }

    TransferWork& m_work;
    const TargetDirectory& m_directory;
    const QString m_part;
    FileDescriptor m_file;
    qint64 m_from = 0; //!< bytes that were there
    Sha1 m_sum;
};

/** What a listed folder holds, as rows. */
QVector<Transfer> rowsOf(const Transfer& folder, const QString& directory, const QVector<DriveItem>& items)
{
    QVector<Transfer> rows;
    for (const DriveItem& item : items) {
        Transfer row;
        row.context = folder.context;
        row.parentRow = folder.id;
        row.rootRow = folder.rootRow > 0 ? folder.rootRow : folder.id;
        row.direction = TransferDirection::Download;
        row.kind = item.isFolder ? Transfer::Kind::Folder : Transfer::Kind::File;
        row.groupId = folder.groupId;
        row.remoteParent = folder.remoteId;
        row.remoteId = item.id;
        row.name = item.name;
        row.root = folder.root;
        row.below = directory;
        row.size = item.isFolder ? 0 : item.size;
        if (!isDriveName(item.name))
            row.problem = badName(item.name).message;
        else if (directory.count(u'/') >= deepest)
            row.problem = QStringLiteral("The folders are nested too deeply");
        if (!row.problem.isEmpty())
            row.state = TransferState::Failed;
        rows.append(row);
    }
    return rows;
}

/** Finds out what an item is called that was asked for by its id alone. */
std::optional<TransferEnd> takeName(TransferWork& work)
{
    if (!work.row.name.isEmpty())
        return {};
    if (work.row.kind == Transfer::Kind::Folder && work.row.remoteId == QLatin1String("0")) {
        work.row.name = QStringLiteral("drive-") + work.row.groupId;
        return {};
    }
    const auto item = work.drive.item(work.row.remoteId);
    if (!item)
        return endOf(item.error());
    if (item->isFolder != (work.row.kind == Transfer::Kind::Folder))
        return TransferEnd::failed(QStringLiteral("item"),
                                   item->isFolder ? QStringLiteral("It is a folder, not a file")
                                                  : QStringLiteral("It is a file, not a folder"));
    work.row.name = item->name;
    return {};
}

} // namespace

TransferEnd downloadFile(TransferWork work)
{
    if (const auto end = takeName(work))
        return *end;
    if (!isDriveName(work.row.name))
        return badName(work.row.name);
    const Result<TargetDirectory> directory = TargetDirectory::open(work.row.root, work.row.below);
    if (!directory)
        return targetFailed(directory.error().text);
    work.progress.size = work.row.size;
    return FileDownload(work, *directory).run();
}

TransferEnd downloadFolder(TransferWork work)
{
    if (const auto end = takeName(work))
        return *end;
    Transfer& row = work.row;
    if (!isDriveName(row.name))
        return badName(row.name);
    const Result<TargetDirectory> directory = TargetDirectory::open(row.root, row.below);
    if (!directory)
        return targetFailed(directory.error().text);
    QString name = row.name;
    if (row.rootRow == 0) {
        // The place is noted before it is taken: a process that is killed between both must know it again.
        name = row.path.isEmpty() ? directory->freeName(row.name, false) : QFileInfo(row.path).fileName();
        row.path = pathIn(row, name);
        if (!work.journal.notePlace(row))
            return storageFailed();
    }
    const QString error = directory->makeDirectory(name);
    if (!error.isEmpty())
        return targetFailed(error, errno);
    const auto items = work.drive.list(row.groupId, row.remoteId);
    if (!items)
        return endOf(items.error());
    const QString below = row.below.isEmpty() ? name : QString(row.below + u'/' + name);
    row.path = pathIn(row, name);
    if (!work.journal.finishListing(row, rowsOf(row, below, *items)))
        return storageFailed();
    return {};
}

} // namespace vlt::cloudsvr
