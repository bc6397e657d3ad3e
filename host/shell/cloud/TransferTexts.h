#pragma once

#include "vltcloudsvr/common/Transfers.h"

#include <QString>

/** How transfers read in their windows. */
namespace shell::transfertexts {

/** "12.3 MB"; a dash for a size that is not known. */
QString size(qint64 bytes);
/** "1.2 MB/s"; empty for 0. */
QString speed(qint64 bytesPerSecond);
/** 0 to 100; 0 while the size is not known, 100 for what is finished. */
int percent(const vlt::cloudsvr::TransferRow& row);
/** "Waiting", "Uploading", "Failed: …", … */
QString state(const vlt::cloudsvr::TransferRow& row, vlt::cloudsvr::TransferDirection direction);
/** All transfers of a direction in a line. */
QString summary(const vlt::cloudsvr::TransferList& list, vlt::cloudsvr::TransferDirection direction);

} // namespace shell::transfertexts
