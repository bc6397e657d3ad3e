#pragma once

#include "vltcloudsvr/common/Result.h"
#include "vltcloudsvr/transfers/FileDescriptor.h"

namespace vlt::cloudsvr {

/** A file that is uploaded. What it is was looked at when it was opened. */
struct SourceFile
{
    FileDescriptor file;
    qint64 size = 0;
    qint64 modified = 0; //!< ns since the epoch

    /** Whether it still is what it was. */
    bool isUnchanged() const;
    /** Up to `size` bytes from `offset`; 0 at the end, -1 with errno. */
    long read(char* data, std::size_t size, qint64 offset) const;
};

/** Opens a regular file. `followsLinks`: a symbolic link stands for what it leads to. */
Result<SourceFile> openSource(const QString& path, bool followsLinks);

} // namespace vlt::cloudsvr
