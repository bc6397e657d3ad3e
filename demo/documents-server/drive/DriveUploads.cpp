#include "drive/DriveUploads.h"

#include <algorithm>

#include <QDir>
#include <QFileInfo>

namespace documents {
namespace {

constexpr qint64 checkedAtOnce = 4LL * 1024 * 1024;

Error noUpload(qint64 id)
{
    return {ErrorCode::NotFound, QStringLiteral("There is no upload %1.").arg(id)};
}

Error takenOver()
{
    return {ErrorCode::Conflict, QStringLiteral("Another request goes on with this upload.")};
}

} // namespace

/** What is known of an upload besides its record and its bytes. */
struct DriveUploads::Session
{
    qint64 id = 0;
    quint64 turn = 0; ///< whose it is to write or finish
    bool isOver = false;
    Sha1 sum = {};
    qint64 summed = 0; ///< bytes from the beginning that are in the sum
};

DriveUploads::Writer::Writer(std::shared_ptr<Session> session, std::unique_ptr<QFile> file, qint64 offset,
                             qint64 size)
    : m_session(std::move(session))
    , m_turn(++m_session->turn)
    , m_file(std::move(file))
    , m_offset(offset)
    , m_size(size)
{
}

DriveUploads::Writer::~Writer() = default;

Failure DriveUploads::Writer::write(const char* data, qint64 bytes)
{
    if (m_session->isOver)
        return noUpload(m_session->id);
    if (m_session->turn != m_turn)
        return takenOver();
    if (bytes > m_size - m_offset)
        return Error{ErrorCode::TooLarge,
                     QStringLiteral("The upload was announced with %1 bytes.").arg(m_size)};
    const qint64 written = std::max<qint64>(m_file->write(data, bytes), 0);
    if (m_session->summed == m_offset) {
        m_session->sum.add(data, static_cast<std::size_t>(written));
        m_session->summed += written;
    }
    m_offset += written;
    return written == bytes ? Failure() : writeError(*m_file);
}

DriveUploads::DriveUploads(DriveTables& tables, DriveStore& store, QString directory)
    : m_tables(tables)
    , m_store(store)
    , m_directory(std::move(directory))
{
}

Failure DriveUploads::open() const
{
    if (QDir().mkpath(m_directory))
        return std::nullopt;
    return Error{ErrorCode::Storage,
                 QStringLiteral("\"%1\" cannot be made as a directory.").arg(m_directory)};
}

QString DriveUploads::pathOf(qint64 id) const
{
    return QStringLiteral("%1/%2").arg(m_directory).arg(id);
}

std::shared_ptr<DriveUploads::Session> DriveUploads::session(qint64 id)
{
    std::shared_ptr<Session>& known = m_sessions[id];
    if (!known) {
        known = std::make_shared<Session>();
        known->id = id;
    }
    return known;
}

Result<UploadOrder> DriveUploads::order(qint64 id)
{
    const auto found = m_tables.upload(id);
    if (!found)
        return found.error();
    return *found ? Result<UploadOrder>(**found) : noUpload(id);
}

qint64 DriveUploads::offset(qint64 id, const FileContent& content) const
{
    const QFileInfo file(pathOf(id));
    if (file.exists())
        return file.size();
    return m_store.hasContent(content) ? content.size : 0;
}

Result<UploadState> DriveUploads::start(const UploadOrder& order)
{
    if (Failure failure = m_store.check(order.target))
        return *failure;
    const auto known = m_tables.uploadLike(order);
    if (!known)
        return known.error();
    if (*known)
        return UploadState{**known, offset(**known, order.content), order.content.size, false};
    const auto id = m_tables.insert(order);
    if (!id)
        return id.error();
    return UploadState{*id, offset(*id, order.content), order.content.size, true};
}

Result<UploadState> DriveUploads::state(qint64 id)
{
    const auto found = order(id);
    if (!found)
        return found.error();
    return UploadState{id, offset(id, found->content), found->content.size, false};
}

Result<std::shared_ptr<DriveUploads::Writer>> DriveUploads::write(qint64 id, qint64 offset)
{
    const auto present = state(id);
    if (!present)
        return present.error();
    if (present->offset != offset)
        return Error{ErrorCode::Conflict, QStringLiteral("The upload stands at %1.").arg(present->offset)};
    auto file = std::make_unique<QFile>(pathOf(id));
    const bool isComplete = offset == present->size;
    // A complete upload takes no byte, and may stand for a content without a file of its own.
    if (!isComplete && (!file->open(QIODevice::ReadWrite | QIODevice::Unbuffered) || !file->seek(offset)))
        return writeError(*file);
    return std::make_shared<Writer>(session(id), std::move(file), offset, present->size);
}

Result<DriveUploads::Finish> DriveUploads::finish(qint64 id)
{
    const auto found = order(id);
    if (!found)
        return found.error();
    const qint64 here = offset(id, found->content);
    if (here != found->content.size)
        return Error{
            ErrorCode::Conflict,
            QStringLiteral("The upload stands at %1 of %2 bytes.").arg(here).arg(found->content.size)};
    const auto current = session(id);
    const quint64 turn = ++current->turn;
    const auto file = std::make_shared<QFile>(pathOf(id));
    const UploadOrder& wanted = *found;
    if (!file->exists() && here > 0)
        return Finish([this, id, wanted] { return complete(id, wanted, wanted.content.sha1); });
    if (here > 0 && !file->open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return Error{ErrorCode::Storage, file->errorString()};

    return Finish([this, id, wanted, current, turn, file]() -> std::optional<Result<DriveItem>> {
        if (current->isOver)
            return Result<DriveItem>(noUpload(id));
        if (current->turn != turn)
            return Result<DriveItem>(takenOver());
        if (current->summed < wanted.content.size) {
            file->seek(current->summed);
            const QByteArray piece = file->read(checkedAtOnce);
            if (piece.isEmpty())
                return Result<DriveItem>(Error{ErrorCode::Storage, file->errorString()});
            current->sum.add(piece.constData(), static_cast<std::size_t>(piece.size()));
            current->summed += piece.size();
            return std::nullopt;
        }
        return complete(id, wanted, current->sum.finish());
    });
}

Result<DriveItem> DriveUploads::complete(qint64 id, const UploadOrder& order, const QString& sha1)
{
    // A sum that was read is of no further use, whatever comes next.
    m_sessions[id]->isOver = true;
    m_sessions.erase(id);
    const QString path = QFileInfo::exists(pathOf(id)) ? pathOf(id) : QString();
    if (sha1 != order.content.sha1) {
        cancel(id);
        return Error{ErrorCode::Sha1Mismatch,
                     QStringLiteral("The bytes have the SHA-1 %1, not %2.").arg(sha1, order.content.sha1)};
    }
    auto item = m_store.adopt(id, order, path);
    if (!item && item.error().code == ErrorCode::NotFound)
        cancel(id);
    return item;
}

Failure DriveUploads::cancel(qint64 id)
{
    if (const auto found = order(id); !found)
        return found.error();
    // The bytes first: on a full disk they make room for the change of the records.
    drop(id);
    return m_tables.removeUpload(id);
}

void DriveUploads::drop(qint64 id)
{
    const auto known = m_sessions.find(id);
    if (known != m_sessions.end()) {
        known->second->isOver = true;
        m_sessions.erase(known);
    }
    QFile::remove(pathOf(id));
}

} // namespace documents
