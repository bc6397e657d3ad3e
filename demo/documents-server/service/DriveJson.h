#pragma once

#include <QJsonArray>
#include <QJsonObject>

#include "drive/DriveItem.h"
#include "http/HttpMessage.h"
#include "store/DocumentStore.h"

namespace documents {

/** {"id","groupid","parentid","name","type":"folder"|"file","size","sha1","mtime","version"}. */
QJsonObject toJson(const DriveItem& item);

/** The same of a document, which is listed in the root of group 0 with the type "document". */
QJsonObject toDriveJson(const DocumentSummary& document);

/** {"version","size","sha1","mtime"}. */
QJsonObject toJson(const FileVersion& version);

/** The item with that status, or what stood in its way. */
HttpReply itemReply(const Result<DriveItem>& item, int status = 200);

} // namespace documents
