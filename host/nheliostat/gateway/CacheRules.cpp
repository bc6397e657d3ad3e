#include "gateway/CacheRules.h"

#include "gateway/HeaderRules.h"

#include <xxhash.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace gateway {
namespace {

constexpr std::size_t shortestHash = 8;
constexpr qint64 largestTaggedBody = 8 * 1024 * 1024;

bool startsWith(std::string_view text, std::string_view start)
{
    return equalsIgnoringCase(text.substr(0, start.size()), start);
}

bool isHexDigit(char c)
{
    const char lower = lowerAscii(c);
    return (c >= '0' && c <= '9') || (lower >= 'a' && lower <= 'f');
}

/** Takes the part behind the last dot off the name; empty when there is no dot. */
std::string_view takeSuffix(std::string_view& name)
{
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos)
        return {};
    const std::string_view suffix = name.substr(dot + 1);
    name = name.substr(0, dot);
    return suffix;
}

/** What is the same for everybody who asks: scripts, styles, fonts and images. */
bool isStaticType(std::string_view contentType)
{
    constexpr std::array<std::string_view, 7> types = {
        "text/javascript", "application/javascript",  "text/css", "application/wasm", "image/",
        "font/",           "application/x-javascript"};
    return std::any_of(types.begin(), types.end(),
                       [contentType](std::string_view type) { return startsWith(contentType, type); });
}

} // namespace

bool namesItsContent(std::string_view path)
{
    constexpr std::array<std::string_view, 8> suffixes = {"js",    "mjs", "css", "wasm",
                                                          "woff2", "svg", "png", "json"};
    std::string_view name = path.substr(path.rfind('/') + 1);
    const std::string_view suffix = takeSuffix(name);
    const std::string_view hash = takeSuffix(name);
    return !name.empty() && hash.size() >= shortestHash &&
           std::all_of(hash.begin(), hash.end(), isHexDigit) &&
           std::find(suffixes.begin(), suffixes.end(), suffix) != suffixes.end();
}

bool isApiPath(std::string_view path)
{
    constexpr std::string_view api = "/api/";
    constexpr std::string_view config = "/office-config/";
    return path.substr(0, api.size()) == api || path.substr(0, config.size()) == config;
}

bool isForOneMoment(const LocalContent& content)
{
    return content.size == 0 || isApiPath(content.path) || startsWith(content.contentType, "text/html");
}

Caching cachingOfFile(const LocalContent& content)
{
    if (content.size == 0)
        return Caching::Never;
    return namesItsContent(content.path) ? Caching::Forever : Caching::Revalidate;
}

Caching cachingOfHandlerAnswer(const LocalContent& content)
{
    if (isForOneMoment(content))
        return Caching::Never;
    if (namesItsContent(content.path))
        return Caching::Forever;
    return isStaticType(content.contentType) && content.size <= largestTaggedBody ? Caching::Revalidate
                                                                                  : Caching::Never;
}

std::string_view cacheControl(Caching caching)
{
    switch (caching) {
    case Caching::Forever:
        return "public, max-age=31536000, immutable";
    case Caching::Revalidate:
        return "no-cache";
    case Caching::Never:
        break;
    }
    return "no-store";
}

std::string contentTag(const QByteArray& content)
{
    // Against mistakes, not against attacks: several times quicker than a cryptographic hash.
    const XXH128_hash_t hash = XXH3_128bits(content.constData(), static_cast<std::size_t>(content.size()));
    std::array<char, 40> text;
    const int length = std::snprintf(text.data(), text.size(), "\"%016llx%016llx\"",
                                     static_cast<unsigned long long>(hash.high64),
                                     static_cast<unsigned long long>(hash.low64));
    return {text.data(), static_cast<std::size_t>(length)};
}

bool listsTag(std::string_view ifNoneMatch, std::string_view tag)
{
    // The tag is quoted, so finding it in the list is matching it.
    return ifNoneMatch == "*" || ifNoneMatch.find(tag) != std::string_view::npos;
}

} // namespace gateway
