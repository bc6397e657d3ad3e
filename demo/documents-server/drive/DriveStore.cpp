#include "drive/DriveStore.h"

#include <algorithm>

#include "drive/DriveNames.h"
#include "drive/Sha1.h"

namespace documents {
namespace {

Error noItem(qint64 id)
{
    return {ErrorCode::NotFound, QStringLiteral("There is no file or folder %1.").arg(id)};
}

Error badName()
{
    return {ErrorCode::Invalid,
            QStringLiteral("The name must have 1 to 255 bytes, no slash and no control character.")};
}

} // namespace

DriveStore::DriveStore(DriveTables& tables, ContentFiles contents, Clock clock)
    : m_tables(tables)
    , m_contents(std::move(contents))
    , m_clock(std::move(clock))
{
}

Failure DriveStore::checkFolder(qint64 group, qint64 folder)
{
    if (folder == 0)
        return std::nullopt;
    const auto found = m_tables.item(folder);
    if (!found)
        return found.error();
    const std::optional<DriveItem>& item = *found;
    if (!item || item->type != DriveItemType::Folder || item->group != group)
        return Error{ErrorCode::NotFound,
                     QStringLiteral("There is no folder %1 in group %2.").arg(folder).arg(group)};
    return std::nullopt;
}

Result<DriveFolder> DriveStore::list(qint64 group, qint64 folder)
{
    if (Failure failure = checkFolder(group, folder))
        return *failure;
    const auto path = m_tables.path(folder);
    if (!path)
        return path.error();
    const auto items = m_tables.children(group, folder);
    if (!items)
        return items.error();
    const auto last = path->isEmpty() ? std::nullopt : std::optional<DriveItem>(path->last());
    return DriveFolder{last, *path, *items};
}

Result<DriveItem> DriveStore::item(qint64 id)
{
    const auto found = m_tables.item(id);
    if (!found)
        return found.error();
    return *found ? Result<DriveItem>(**found) : noItem(id);
}

Result<DriveStore::MadeFolder> DriveStore::makeFolder(qint64 group, qint64 parent, const QString& name)
{
    if (!isDriveName(name))
        return badName();
    if (Failure failure = checkFolder(group, parent))
        return *failure;
    const auto present = m_tables.child(group, parent, name);
    if (!present)
        return present.error();
    if (const std::optional<DriveItem>& item = *present) {
        if (item->type == DriveItemType::Folder)
            return MadeFolder{*item, false};
        return Error{ErrorCode::Conflict, QStringLiteral("A file has the name \"%1\".").arg(name)};
    }
    DriveItem folder;
    folder.group = group;
    folder.parent = parent;
    folder.name = name;
    folder.modified = m_clock();
    const auto made = m_tables.insert(folder);
    return made ? Result<MadeFolder>(MadeFolder{*made, true}) : made.error();
}

Result<QVector<qint64>> DriveStore::remove(qint64 id)
{
    if (const auto found = item(id); !found)
        return found.error();
    const auto removed = m_tables.remove(id);
    if (!removed)
        return removed.error();
    for (const QString& sha1 : removed->contents)
        m_contents.remove(sha1);
    return removed->uploads;
}

Failure DriveStore::check(const FileTarget& target)
{
    const auto found = present(target);
    return found ? Failure() : found.error();
}

Result<std::optional<DriveItem>> DriveStore::present(const FileTarget& target)
{
    const bool keepsName = target.file != 0 && target.name.isEmpty();
    if (!keepsName && !isDriveName(target.name))
        return badName();
    if (Failure failure = checkFolder(target.group, target.parent))
        return *failure;
    if (target.file == 0) {
        auto found = m_tables.child(target.group, target.parent, target.name);
        if (found && *found && (*found)->type == DriveItemType::Folder)
            return Error{ErrorCode::Conflict,
                         QStringLiteral("A folder has the name \"%1\".").arg(target.name)};
        return found;
    }
    const auto found = m_tables.item(target.file);
    if (!found)
        return found.error();
    const std::optional<DriveItem>& item = *found;
    if (!item || item->type != DriveItemType::File || item->group != target.group ||
        item->parent != target.parent)
        return Error{ErrorCode::NotFound,
                     QStringLiteral("There is no file %1 in folder %2.").arg(target.file).arg(target.parent)};
    return item;
}

Result<DriveItem> DriveStore::put(const FileTarget& target, const QString& sha1, const QByteArray& bytes)
{
    if (Failure failure = check(target))
        return *failure;
    const FileContent content{Sha1::of(bytes), bytes.size()};
    if (!sha1.isEmpty() && sha1 != content.sha1)
        return Error{ErrorCode::Sha1Mismatch,
                     QStringLiteral("The bytes have the SHA-1 %1, not %2.").arg(content.sha1, sha1)};
    if (Failure failure = m_contents.store(content, bytes))
        return *failure;
    std::optional<Result<DriveItem>> recorded;
    const Failure failure = m_tables.transaction([&] {
        recorded.emplace(record(target, content));
        return *recorded ? Failure() : recorded->error();
    });
    return failure ? *failure : *recorded;
}

Result<DriveItem> DriveStore::adopt(qint64 upload, const UploadOrder& order, const QString& path)
{
    if (Failure failure = check(order.target))
        return *failure;
    Failure unplaced;
    if (!path.isEmpty())
        unplaced = m_contents.adopt(order.content, path);
    else if (order.content.size == 0)
        unplaced = m_contents.store(order.content, {});
    if (unplaced)
        return *unplaced;
    std::optional<Result<DriveItem>> recorded;
    const Failure failure = m_tables.transaction([&]() -> Failure {
        recorded.emplace(record(order.target, order.content));
        return *recorded ? m_tables.removeUpload(upload) : recorded->error();
    });
    return failure ? *failure : *recorded;
}

Result<DriveItem> DriveStore::record(const FileTarget& target, const FileContent& content)
{
    const auto found = present(target);
    if (!found)
        return found.error();
    if (!*found) {
        DriveItem fresh;
        fresh.group = target.group;
        fresh.parent = target.parent;
        fresh.name = target.name;
        fresh.type = DriveItemType::File;
        fresh.content = content;
        fresh.modified = m_clock();
        fresh.version = 1;
        return m_tables.insert(fresh);
    }
    DriveItem file = **found;
    if (!target.name.isEmpty() && target.name != file.name) {
        const auto other = m_tables.child(file.group, file.parent, target.name);
        if (!other)
            return other.error();
        if (!*other) {
            file.name = target.name;
            if (Failure failure = m_tables.rename(file))
                return *failure;
        }
    }
    if (file.content == content)
        return file;
    file.content = content;
    file.modified = m_clock();
    ++file.version;
    const Failure failure = m_tables.addVersion(file);
    return failure ? Result<DriveItem>(*failure) : file;
}

Result<DriveItem> DriveStore::file(qint64 id)
{
    const auto found = item(id);
    return found && found->type != DriveItemType::File ? noItem(id) : found;
}

Result<QVector<FileVersion>> DriveStore::versions(qint64 id)
{
    const auto found = file(id);
    return found ? m_tables.versions(id) : found.error();
}

Result<OpenContent> DriveStore::content(qint64 id, std::optional<qint64> version)
{
    const auto found = file(id);
    if (!found)
        return found.error();
    FileVersion wanted{found->version, found->content, found->modified};
    if (version && *version != found->version) {
        const auto all = m_tables.versions(id);
        if (!all)
            return all.error();
        const auto named = std::find_if(
            all->begin(), all->end(), [&version](const FileVersion& one) { return one.version == *version; });
        if (named == all->end())
            return Error{ErrorCode::NotFound,
                         QStringLiteral("File %1 has no version %2.").arg(id).arg(*version)};
        wanted = *named;
    }
    auto content = m_contents.open(wanted.content);
    if (!content)
        return Error{ErrorCode::Damaged,
                     QStringLiteral("The content of file %1 is lost or damaged.").arg(id)};
    return OpenContent{found->name, wanted, std::move(content)};
}

} // namespace documents
