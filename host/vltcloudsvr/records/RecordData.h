#pragma once

#include "vltcloudsvr/common/Result.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/**
 * The data of a document's record: a JSON object with "localId", "fileId", the times "createTimeL",
 * "accessTimeL" and "modifyTimeL" (ms), the directories "pkgSyncPath" and "pkgCachePath" (from the package's
 * root, with a slash first) and what the application adds.
 */
namespace vlt::cloudsvr {

QJsonObject newRecordData(const QString& localId, const QString& fileId, qint64 nowMs);

/** Whether the text is a local id: 32 hexadecimal digits, lower case. */
bool isLocalId(const QString& text);

/**
 * Merges members of a JSON object into the data; a null takes the member away. The members named above stay
 * and keep their kind, the ids keep their value. The error says what is wrong with the changes.
 */
Result<QJsonObject> mergeRecordData(QJsonObject data, const QByteArray& changes);

QByteArray toText(const QJsonObject& data);

} // namespace vlt::cloudsvr
