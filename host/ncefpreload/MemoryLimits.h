#pragma once

#include <QtGlobal>

namespace ncefpreload {

/** What may be kept in advance. Bytes of resident memory. */
struct MemoryLimits
{
    /** A view whose renderer is larger is not kept. */
    qint64 largestRenderer = 400LL * 1024 * 1024;
    /** With less memory available on the machine, nothing is made or taken back. */
    qint64 leastAvailable = 768LL * 1024 * 1024;
};

/** 0 when the process is gone. */
qint64 residentBytes(qint64 process);
/** What the machine can still give without swapping; a very large number when it does not say. */
qint64 availableBytes();

} // namespace ncefpreload
