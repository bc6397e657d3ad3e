#include "vltcloudsvr/transfers/HashPipe.h"
#include "vltcloudsvr/transfers/SourceFile.h"
#include "vltcloudsvr/transfers/TargetDirectory.h"
#include "vltcloudsvr/transfers/TransferWork.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <utility>

namespace vlt::cloudsvr {
namespace {

constexpr int statusNotFound = 404;
constexpr int statusConflict = 409;
constexpr int statusMismatch = 422;

TransferEnd finished(const DriveItem& item, const QString& sha1, qint64 size)
{
    TransferEnd end;
    end.remoteId = item.id;
    end.sha1 = sha1;
    end.size = size;
    return end;
}

TransferEnd changed()
{
    return TransferEnd::failed(QStringLiteral("sourceChanged"),
                               QStringLiteral("The file was changed while it was uploaded"));
}

TransferEnd unreadable(int error)
{
    return TransferEnd::failed(QStringLiteral("source"),
                               QStringLiteral("The file cannot be read: ") + systemError(error));
}

TransferEnd stopped()
{
    TransferEnd end;
    end.kind = TransferEnd::Kind::Stopped;
    return end;
}

/** The upload of one file that goes in several steps. */
class LargeUpload
{
public:
    LargeUpload(TransferWork& work, const SourceFile& source, UploadTarget target)
        : m_work(work)
        , m_source(source)
        , m_target(std::move(target))
    {
    }

    TransferEnd run()
    {
        if (const auto end = takeHash())
            return *end;
        // The service may have forgotten an upload, or know better where it stands.
        constexpr int beginnings = 3;
        TransferEnd end;
        for (int i = 0; i < beginnings; ++i) {
            end = attempt();
            if (!m_isToBeginAgain)
                break;
            end.kind = TransferEnd::Kind::Later;
        }
        return end;
    }

private:
    using MaybeEnd = std::optional<TransferEnd>;

    /** The service wants the SHA-1 first; an earlier attempt's counts as long as the file is the same. */
    MaybeEnd takeHash()
    {
        const Transfer& row = m_work.row;
        if (!row.sha1.isEmpty() && row.size == m_source.size && row.modified == m_source.modified) {
            m_sha1 = row.sha1;
            return {};
        }
        Sha1 sum;
        HashPipe pipe(sum, true);
        for (qint64 offset = 0; offset < m_source.size;) {
            if (m_work.progress.isStopped)
                return stopped();
            char* piece = pipe.piece();
            const long got = m_source.read(piece, HashPipe::pieceSize, offset);
            if (got < 0)
                return unreadable(errno);
            if (got == 0)
                break;
            pipe.add(std::size_t(got));
            offset += got;
        }
        pipe.finish();
        if (!m_source.isUnchanged())
            return changed();
        m_sha1 = sum.finish();
        m_work.journal.noteSource(row.id, m_source.size, m_source.modified, m_sha1);
        return {};
    }

    TransferEnd attempt()
    {
        m_isToBeginAgain = false;
        const auto session = m_work.drive.beginUpload(m_target, m_source.size, m_sha1);
        if (!session)
            return endOf(session.error());
        const TransferEnd end = continueUpload(*session);
        if (end.kind == TransferEnd::Kind::Stopped && m_work.progress.isStopped) {
            m_work.link.resume();
            m_work.drive.dropUpload(session->id);
        }
        return end;
    }

    TransferEnd continueUpload(const UploadSession& session)
    {
        m_work.progress.done = session.offset;
        if (session.offset < m_source.size) {
            if (const auto end = sendFrom(session))
                return *end;
        }
        if (!m_source.isUnchanged()) {
            m_work.drive.dropUpload(session.id);
            return changed();
        }
        const auto item = m_work.drive.finishUpload(session.id);
        if (!item)
            return refused(item.error());
        if (item->sha1 != m_sha1)
            return endLater(QStringLiteral("sha1Mismatch"),
                            QStringLiteral("The service stored something else than the file"));
        return finished(*item, m_sha1, m_source.size);
    }

    MaybeEnd sendFrom(const UploadSession& session)
    {
        const auto begun = m_work.drive.beginBytes(session, m_source.size - session.offset);
        if (!begun)
            return endOf(begun.error());
        for (qint64 offset = session.offset; offset < m_source.size;) {
            const auto count = std::min<qint64>(qint64(m_work.buffer.size()), m_source.size - offset);
            const long got = m_source.read(m_work.buffer.data(), std::size_t(count), offset);
            if (got <= 0) {
                m_work.link.close();
                return got < 0 ? unreadable(errno) : changed();
            }
            const auto isSent = m_work.link.sendBody(m_work.buffer.data(), std::size_t(got));
            if (!isSent)
                return sendFailed(isSent.error());
            offset += got;
            m_work.progress.done = offset;
        }
        const auto arrived = m_work.drive.endBytes();
        if (!arrived)
            return refused(arrived.error());
        m_isToBeginAgain = *arrived != m_source.size;
        return m_isToBeginAgain ? MaybeEnd(endLater(QStringLiteral("connection"),
                                                    QStringLiteral("Not everything arrived")))
                                : MaybeEnd();
    }

    TransferEnd sendFailed(const HttpLink::Failure& failure)
    {
        if (failure.isInterrupted) {
            m_work.link.close();
            return stopped();
        }
        // The service may have said why before everything was sent.
        const auto early = m_work.drive.endBytes();
        m_work.link.close();
        if (!early && early.error().kind != DriveError::Kind::Unreachable)
            return refused(early.error());
        return endOf(DriveClient::errorOf(failure));
    }

    TransferEnd refused(const DriveError& error)
    {
        m_isToBeginAgain = error.status == statusConflict || error.status == statusNotFound;
        if (error.status == statusMismatch) {
            // What was taken for the file's SHA-1 is of no use any more.
            m_work.journal.noteSource(m_work.row.id, m_source.size, 0, {});
            TransferEnd end = endOf(error);
            end.kind = TransferEnd::Kind::Later;
            return end;
        }
        return endOf(error);
    }

    TransferWork& m_work;
    const SourceFile& m_source;
    const UploadTarget m_target;
    QString m_sha1;
    bool m_isToBeginAgain = false;
};

TransferEnd uploadSmall(TransferWork& work, const SourceFile& source, const UploadTarget& target)
{
    QByteArray bytes(int(source.size), Qt::Uninitialized);
    qint64 filled = 0;
    while (filled < source.size) {
        const long got = source.read(bytes.data() + filled, std::size_t(source.size - filled), filled);
        if (got < 0)
            return unreadable(errno);
        if (got == 0)
            break;
        filled += got;
    }
    if (filled != source.size || !source.isUnchanged())
        return changed();
    Sha1 sum;
    sum.add(bytes.constData(), std::size_t(bytes.size()));
    const QString sha1 = sum.finish();
    const auto item = work.drive.put(target, bytes, sha1);
    if (!item)
        return endOf(item.error());
    if (item->sha1 != sha1)
        return endLater(QStringLiteral("sha1Mismatch"),
                        QStringLiteral("The service stored something else than the file"));
    return finished(*item, sha1, source.size);
}

} // namespace

TransferEnd uploadFile(TransferWork work)
{
    // Below a folder a link was skipped; one that is put in its place later is not followed either.
    const Result<SourceFile> source = openSource(work.row.path, work.row.parentRow == 0);
    if (!source)
        return TransferEnd::failed(QStringLiteral("source"), source.error().text);
    work.progress.size = source->size;
    const bool isVersion = !work.row.remoteId.isEmpty();
    const UploadTarget target{work.row.groupId, work.row.remoteParent, work.row.remoteId,
                              isVersion ? QString() : work.row.name};
    if (source->size <= largestSmallFile)
        return uploadSmall(work, *source, target);
    return LargeUpload(work, *source, target).run();
}

TransferEnd uploadFolder(TransferWork work)
{
    const auto item = work.drive.makeFolder(work.row.groupId, work.row.remoteParent, work.row.name);
    if (!item)
        return endOf(item.error());
    if (!item->isFolder)
        return endLater(QStringLiteral("badAnswer"), QStringLiteral("The service made no folder"));
    TransferEnd end;
    end.remoteId = item->id;
    return end;
}

} // namespace vlt::cloudsvr
