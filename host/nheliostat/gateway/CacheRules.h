#pragma once

#include <QByteArray>

#include <string>
#include <string_view>

namespace gateway {

/** For how long the browser may use a local answer without asking again. */
enum class Caching {
    Never,      //!< not kept at all
    Revalidate, //!< kept, asked about before each use
    Forever     //!< the URL names this very content
};

/** What is known of a local answer before it is written. */
struct LocalContent
{
    std::string_view path;        //!< of the URL
    std::string_view contentType; //!< with or without parameters
    qint64 size = 0;
};

/**
 * True for "…/name.HASH.suffix", the hash of eight or more hexadecimal digits, the suffix one of those that
 * scripts, styles, fonts, images and their data have.
 */
bool namesItsContent(std::string_view path);

/** True below "/api/" and "/office-config/", where every answer is for one moment. */
bool isApiPath(std::string_view path);

/** True for an empty body, a page or an API answer: whatever its own headers say, nobody may keep it. */
bool isForOneMoment(const LocalContent& content);

Caching cachingOfFile(const LocalContent& content);
/** What a handler's answer without a Cache-Control of its own gets. */
Caching cachingOfHandlerAnswer(const LocalContent& content);

/** The value of a Cache-Control field. */
std::string_view cacheControl(Caching caching);

/** A strong entity tag, quoted, that changes with the content. */
std::string contentTag(const QByteArray& content);

/** Whether an If-None-Match value lists the tag, which is quoted and strong. */
bool listsTag(std::string_view ifNoneMatch, std::string_view tag);

} // namespace gateway
