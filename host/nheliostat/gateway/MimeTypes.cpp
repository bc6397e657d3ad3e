#include "gateway/MimeTypes.h"

#include "gateway/HeaderRules.h"

#include <algorithm>
#include <iterator>

namespace gateway {
namespace {

struct SuffixType
{
    std::string_view suffix;
    std::string_view type;
};

constexpr SuffixType suffixTypes[] = {
    {"html", "text/html; charset=utf-8"},
    {"js", "text/javascript; charset=utf-8"},
    {"css", "text/css; charset=utf-8"},
    {"json", "application/json"},
    {"png", "image/png"},
    {"svg", "image/svg+xml"},
    {"woff2", "font/woff2"},
    {"woff", "font/woff"},
    {"wasm", "application/wasm"},
    {"htm", "text/html; charset=utf-8"},
    {"mjs", "text/javascript; charset=utf-8"},
    {"map", "application/json"},
    {"txt", "text/plain; charset=utf-8"},
    {"xml", "text/xml; charset=utf-8"},
    {"csv", "text/csv; charset=utf-8"},
    {"md", "text/markdown; charset=utf-8"},
    {"xhtml", "application/xhtml+xml"},
    {"webmanifest", "application/manifest+json"},
    {"jpg", "image/jpeg"},
    {"jpeg", "image/jpeg"},
    {"gif", "image/gif"},
    {"webp", "image/webp"},
    {"avif", "image/avif"},
    {"bmp", "image/bmp"},
    {"ico", "image/x-icon"},
    {"ttf", "font/ttf"},
    {"otf", "font/otf"},
    {"mp3", "audio/mpeg"},
    {"ogg", "audio/ogg"},
    {"wav", "audio/wav"},
    {"mp4", "video/mp4"},
    {"webm", "video/webm"},
    {"pdf", "application/pdf"},
    {"zip", "application/zip"},
    {"gz", "application/gzip"},
};

} // namespace

std::string_view mimeTypeOfPath(std::string_view path)
{
    const std::string_view file = path.substr(path.rfind('/') + 1);
    const std::size_t dot = file.rfind('.');
    if (dot == std::string_view::npos)
        return "text/html; charset=utf-8";
    const std::string_view suffix = file.substr(dot + 1);
    const auto* found =
        std::find_if(std::begin(suffixTypes), std::end(suffixTypes),
                     [suffix](const SuffixType& entry) { return equalsIgnoringCase(entry.suffix, suffix); });
    return found == std::end(suffixTypes) ? "application/octet-stream" : found->type;
}

} // namespace gateway
