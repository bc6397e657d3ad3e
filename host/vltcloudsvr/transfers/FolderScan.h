#pragma once

#include "vltcloudsvr/common/Result.h"
#include "vltcloudsvr/transfers/Transfer.h"

#include <functional>

namespace vlt::cloudsvr {

/**
 * Walks a local folder level by level and gives a row for it, for each folder and for each regular file in
 * it, hidden ones too; symbolic links and special files are left out. `add` answers the row's id, 0 to end
 * the walk. `pattern` says for whom and where to.
 *
 * Answers the id of the folder's own row; the error says that there is no such folder, or that `add` ended
 * it.
 */
Result<qint64> scanFolder(const QString& folder, const Transfer& pattern,
                          const std::function<qint64(const Transfer&)>& add);

} // namespace vlt::cloudsvr
