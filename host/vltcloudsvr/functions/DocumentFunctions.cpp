#include "vltcloudsvr/functions/DocumentFunctions.h"

#include "vltcloudsvr/records/PackageDirectory.h"
#include "vltcloudsvr/records/RecordData.h"

#include <QUuid>

#include <utility>

namespace vlt::cloudsvr {
namespace {

constexpr int longestFileId = 1024;

const QString localIdKey = QStringLiteral("localId");
const QString fileIdKey = QStringLiteral("fileId");
const QString dataKey = QStringLiteral("data");

CallResult described(const DocumentRecord& record)
{
    return {ResultCode::Ok,
            {{localIdKey, record.localId}, {dataKey, QString::fromUtf8(toText(record.data))}}};
}

} // namespace

DocumentFunctions::DocumentFunctions(QString recordsFile, Clock clock)
    : m_store(std::move(recordsFile))
    , m_clock(std::move(clock))
{
}

base::Outcome<DocumentRecord, CallResult> DocumentFunctions::existing(const RecordStore::Found& found) const
{
    if (!found)
        return failure(ResultCode::StorageError, found.error().text);
    if (!*found)
        return failure(ResultCode::NotFound, QStringLiteral("there is no such record"));
    return **found;
}

CallResult DocumentFunctions::create(const Caller& caller, const Values& arguments)
{
    const QString fileId = arguments.value(fileIdKey);
    if (fileId.isEmpty() || fileId.size() > longestFileId)
        return failure(ResultCode::BadArgument, QStringLiteral("\"fileId\" is empty or too long"));
    const RecordStore::Found found = m_store.findByFile(caller.userId, fileId);
    if (!found)
        return failure(ResultCode::StorageError, found.error().text);

    const bool isNew = !*found;
    DocumentRecord record{QUuid::createUuid().toString(QUuid::Id128), fileId, {}};
    if (isNew)
        record.data = newRecordData(record.localId, fileId, m_clock());
    else
        record = **found;
    const Result<QString> root = packageRoot(caller.localDataDir, record.localId);
    if (!root)
        return failure(ResultCode::BadArgument, root.error().text);
    const QString packageError = makePackage(*root);
    if (!packageError.isEmpty())
        return failure(ResultCode::StorageError, packageError);
    const QString recordError = isNew ? m_store.insert(caller.userId, record) : QString();
    if (!recordError.isEmpty()) {
        removePackage(*root);
        return failure(ResultCode::StorageError, recordError);
    }
    return described(record);
}

CallResult DocumentFunctions::get(const Caller& caller, const Values& arguments)
{
    const QString localId = arguments.value(localIdKey);
    const QString fileId = arguments.value(fileIdKey);
    if (localId.isEmpty() && fileId.isEmpty())
        return failure(ResultCode::BadArgument, QStringLiteral("\"localId\" and \"fileId\" are empty"));
    const auto record = existing(localId.isEmpty() ? m_store.findByFile(caller.userId, fileId)
                                                   : m_store.find(caller.userId, localId));
    return record ? described(*record) : record.error();
}

CallResult DocumentFunctions::update(const Caller& caller, const Values& arguments)
{
    const auto found = existing(m_store.find(caller.userId, arguments.value(localIdKey)));
    if (!found)
        return found.error();
    const Result<QJsonObject> merged = mergeRecordData(found->data, arguments.value(dataKey).toUtf8());
    if (!merged)
        return failure(ResultCode::BadArgument, merged.error().text);
    const DocumentRecord record{found->localId, found->fileId, *merged};
    const QString error = m_store.update(caller.userId, record);
    return error.isEmpty() ? described(record) : failure(ResultCode::StorageError, error);
}

CallResult DocumentFunctions::remove(const Caller& caller, const Values& arguments)
{
    const auto found = existing(m_store.find(caller.userId, arguments.value(localIdKey)));
    if (!found)
        return found.error();
    const Result<QString> root = packageRoot(caller.localDataDir, found->localId);
    if (!root)
        return failure(ResultCode::BadArgument, root.error().text);
    // The record goes last: as long as files are left, the removal can be asked for again.
    QString error = removePackage(*root);
    if (error.isEmpty())
        error = m_store.remove(caller.userId, found->localId);
    return error.isEmpty() ? CallResult() : failure(ResultCode::StorageError, error);
}

} // namespace vlt::cloudsvr
