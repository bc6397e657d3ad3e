#pragma once

#include "gateway/FileHandle.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace gateway {

struct LocalFile
{
    FileHandle handle;
    std::int64_t size = 0;
    std::string etag;         //!< quoted, changes with the file and with every write to it
    std::string lastModified; //!< an HTTP date
};

/**
 * The relative file path named by the part of a URL behind a directory's prefix: query dropped, percent
 * escapes decoded. Nothing for an empty path, a broken escape, a NUL, a backslash or any "..".
 */
std::optional<std::string> relativeFilePath(std::string_view urlRest);

/** Opens a regular file below `directory`; nothing when there is none or a symbolic link leads out of it. */
std::optional<LocalFile> openBelow(const std::string& directory, const std::string& relativePath);

/** Whether the browser's copy, described by its conditional header values (empty: absent), is still good. */
bool isUnchanged(const LocalFile& file, std::string_view ifNoneMatch, std::string_view ifModifiedSince);

} // namespace gateway
