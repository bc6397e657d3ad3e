#pragma once

#include <string_view>

namespace gateway {

/**
 * The media type for a URL path by its last suffix, in any letter case. A path without a suffix is a page
 * ("text/html"); an unknown suffix is "application/octet-stream". Text types carry "charset=utf-8".
 */
std::string_view mimeTypeOfPath(std::string_view path);

} // namespace gateway
