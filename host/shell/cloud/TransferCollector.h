#pragma once

#include "shell/cloud/TransferSource.h"

#include <QStringList>

namespace shell {

/** Which transfers something can be done with. */
using TransferTest = bool (*)(const vlt::cloudsvr::TransferRow& row);

/** Running, queued or waiting. */
bool canCancel(const vlt::cloudsvr::TransferRow& row);
/** Failed or stopped. */
bool canRetry(const vlt::cloudsvr::TransferRow& row);

/**
 * Reads all transfers of a source page by page and hands the ids of those that pass the test to a function,
 * once, unless a page is not answered or the source goes.
 */
void collectTransfers(TransferSource& source, TransferTest test,
                      std::function<void(const QStringList& ids)> done);

} // namespace shell
