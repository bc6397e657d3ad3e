#pragma once

#include "vltcloudsvr/transfers/Transfer.h"

#include <QHash>

#include <atomic>

namespace vlt::cloudsvr {

/** How far one row is; written by who works on it, read by anybody. */
struct TransferProgress
{
    std::atomic<qint64> done{0};  //!< bytes
    std::atomic<qint64> size{-1}; //!< bytes; -1: not known yet
    std::atomic<bool> isStopped{false};
};

/** The same at one moment. */
struct RunningTransfer
{
    qint64 rootRow = 0;
    qint64 context = 0;
    TransferDirection direction = TransferDirection::Upload;
    qint64 done = 0;
    qint64 size = -1;
    qint64 speed = 0; //!< bytes a second
};

/** By row. */
using RunningTransfers = QHash<qint64, RunningTransfer>;

} // namespace vlt::cloudsvr
