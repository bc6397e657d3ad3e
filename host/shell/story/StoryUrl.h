#pragma once

#include <QString>

namespace shell::story {

/** What a request is for, as far as its URL tells. */
enum class RequestKind { Page, OpenFile, EnvConfig, SsrContent, Script, Picture, Other };

RequestKind requestKind(const QString& url);
/** The name under which the add-on fetches the same in advance; empty for what it does not. */
QString replyNameOf(RequestKind kind);
/** Whether the browser asks for a reply that was fetched in advance. */
bool asksForFetchedReply(const QString& url);
/** The value of the query item; empty when there is none. */
QString queryOf(const QString& url, const QString& item);
/** Scheme, host and path. */
QString placeOf(const QString& url);
/** The last part of the path. */
QString fileNameOf(const QString& url);

} // namespace shell::story
