#pragma once

#include <QtGlobal>

namespace shell {

/** Resident memory, in bytes; memory that processes share counts in each. */
struct MemoryUse
{
    qint64 shell = 0;
    qint64 browser = 0; //!< of the browser's processes
    int browserProcesses = 0;
};

/** Of this process and of the processes that it started, directly or not. Zeros where the system does not
 * tell. */
MemoryUse memoryUse();

} // namespace shell
