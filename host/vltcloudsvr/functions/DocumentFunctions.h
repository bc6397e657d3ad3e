#pragma once

#include "vltcloudsvr/common/Calls.h"
#include "vltcloudsvr/records/RecordStore.h"

#include <functional>

namespace vlt::cloudsvr {

/**
 * The operations on documents that are kept on this machine: a record and a package directory each. Used on
 * the thread that made it.
 */
class DocumentFunctions
{
public:
    using Clock = std::function<qint64()>; //!< ms since the epoch

    DocumentFunctions(QString recordsFile, Clock clock);

    /** {"fileId"} → {"localId", "data"}; a file that has a record keeps it. */
    CallResult create(const Caller& caller, const Values& arguments);
    /** {"localId", "fileId"}: by the local id or, when it is empty, the file → {"localId", "data"}. */
    CallResult get(const Caller& caller, const Values& arguments);
    /** {"localId", "data", "source"} → {"localId", "data"}, merged. */
    CallResult update(const Caller& caller, const Values& arguments);
    /** {"localId"}: the record and the package with all files in it. */
    CallResult remove(const Caller& caller, const Values& arguments);

private:
    /** The record of a local id; code NotFound or StorageError when there is none. */
    base::Outcome<DocumentRecord, CallResult> existing(const RecordStore::Found& found) const;

    RecordStore m_store;
    const Clock m_clock;
};

} // namespace vlt::cloudsvr
