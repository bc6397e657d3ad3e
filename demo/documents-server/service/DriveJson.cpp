#include "service/DriveJson.h"

#include "http/Replies.h"
#include "service/DocumentsApi.h"

namespace documents {
namespace {

QJsonObject itemJson(const QString& id, const DriveItem& item, const QString& type)
{
    return {{QStringLiteral("id"), id},
            {QStringLiteral("groupid"), QString::number(item.group)},
            {QStringLiteral("parentid"), QString::number(item.parent)},
            {QStringLiteral("name"), item.name},
            {QStringLiteral("type"), type},
            {QStringLiteral("size"), item.content.size},
            {QStringLiteral("sha1"), item.content.sha1},
            {QStringLiteral("mtime"), item.modified},
            {QStringLiteral("version"), item.version}};
}

} // namespace

QJsonObject toJson(const DriveItem& item)
{
    return itemJson(QString::number(item.id), item,
                    item.type == DriveItemType::File ? QStringLiteral("file") : QStringLiteral("folder"));
}

QJsonObject toDriveJson(const DocumentSummary& document)
{
    DriveItem item;
    item.name = document.name;
    item.content.size = document.size;
    item.modified = document.modified;
    item.version = document.version;
    return itemJson(document.id, item, QStringLiteral("document"));
}

QJsonObject toJson(const FileVersion& version)
{
    return {{QStringLiteral("version"), version.version},
            {QStringLiteral("size"), version.content.size},
            {QStringLiteral("sha1"), version.content.sha1},
            {QStringLiteral("mtime"), version.modified}};
}

HttpReply itemReply(const Result<DriveItem>& item, int status)
{
    return item ? jsonReply(status, toJson(*item)) : failureReply(item.error());
}

} // namespace documents
