#pragma once

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>
#include <QVariantMap>

#include <optional>

namespace nnetwork {

/** The URL that a text names; nothing unless it is http or https with a host. */
std::optional<QUrl> requestUrl(const QString& text);

/** The port that an http or https URL means. */
int portOf(const QUrl& url);

/**
 * Puts the caller's headers into the request. Line breaks in values are dropped; left out are names that HTTP
 * does not allow and the fields that frame the message, which the connection writes.
 */
void applyHeaders(QNetworkRequest& request, const QVariantMap& headers);

/** A reply's headers by name; several Set-Cookie lines are joined by line feeds. */
QVariantMap headersOf(const QNetworkReply& reply);

/** What a status and its Location make of a request. */
struct Redirect
{
    enum class Kind {
        None,    ///< the reply is the end of it
        Follow,  ///< ask `url` next
        Refused, ///< another origin: not followed
        Broken   ///< a Location that names nothing
    };
    Kind kind = Kind::None;
    QUrl url;
    bool asGet = false; ///< the next request is a GET without body
};

/** `asked` is the URL with the host's name. A relative location is meant from there. */
Redirect redirectOf(const QUrl& asked, int status, const QByteArray& location);

/** True when fewer bytes came than the reply announced. The access manager does not always notice. */
bool isCutShort(const QNetworkReply& reply, int status, qint64 receivedBytes);

/** True for an error that is a server's whole answer, and none of the connection's. */
bool isAnswer(QNetworkReply::NetworkError error, int status);

} // namespace nnetwork
