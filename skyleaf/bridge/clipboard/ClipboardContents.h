#pragma once

#include <QJsonObject>
#include <QVariantMap>

#include <json/value.h>

#include <memory>

class QMimeData;

/** How the web application sees what is on a clipboard, and what its arguments put there. */
namespace clipboardcontents {

/**
 * MIME type to Base64 text; "text/uri-list" to an array of them, one a URL. `content` lies on the system
 * clipboard; null gives an empty object. HTML is read from the system clipboard itself.
 */
Json::Value toReply(const QMimeData* content);

/** The MIME data of arguments, type to value; HTML is CF_HTML. Values of a wrong kind count as their text. */
std::unique_ptr<QMimeData> fromArguments(const QVariantMap& arguments);

/** "type", and "content" for text and a cloud file. `content` may be null. */
Json::Value toSimpleReply(const QMimeData* content);

/** The MIME data of {"type", "content"}; null for an unknown type. */
std::unique_ptr<QMimeData> fromSimpleData(const QVariantMap& data);

} // namespace clipboardcontents
