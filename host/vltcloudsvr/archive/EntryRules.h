#pragma once

#include <QByteArray>
#include <QString>

namespace vlt::cloudsvr {

/** What an archive may be: generous for documents, a stop for archives made to fill the disk. */
struct ArchiveLimits
{
    qint64 totalBytes = 4LL * 1024 * 1024 * 1024; //!< of all files unpacked
    int entries = 100'000;
};

/**
 * Why an entry must not be unpacked; empty when it may be. `name` is the entry's, UTF-8; `unixMode` its mode
 * bits, 0 for unknown. Names that lead out of the target, on this system or another, and entries that are
 * neither files nor directories are refused.
 */
QString refusalOf(const QByteArray& name, quint32 unixMode);

} // namespace vlt::cloudsvr
