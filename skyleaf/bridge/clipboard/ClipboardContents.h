#pragma once

#include <QJsonObject>
#include <QVariantMap>
#include <QVector>

#include <json/value.h>

#include <memory>

class QMimeData;

/** How the web application sees what is on a clipboard, and what its arguments put there. */
namespace clipboardcontents {

/**
 * MIME type to Base64 text; "text/uri-list" to an array of them, one a URL. `content` lies on the system
 * clipboard; null gives an empty object. HTML is read from the system clipboard itself. A picture is not
 * among them; see clipboardimages.
 */
Json::Value toReply(const QMimeData* content);
/** Nothing for an empty `png`. */
void addPicture(Json::Value& reply, const QByteArray& png);

/** What arguments put on the clipboard. */
struct Placed
{
    std::unique_ptr<QMimeData> content;
    QVector<QByteArray> pictures; //!< files; the last that can be read is the content's picture
};
/** Of arguments, type to value; HTML is CF_HTML. Values of a wrong kind count as their text. */
Placed fromArguments(const QVariantMap& arguments);

/** "type", and "content" for text and a cloud file. `content` may be null. */
Json::Value toSimpleReply(const QMimeData* content);

/** The MIME data of {"type", "content"}; null for an unknown type. */
std::unique_ptr<QMimeData> fromSimpleData(const QVariantMap& data);

} // namespace clipboardcontents
