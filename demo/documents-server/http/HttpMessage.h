#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <QByteArray>
#include <QFile>

namespace documents {

/** A request as the service sees it: complete, with the few header fields that matter here (empty when
 * absent). */
struct HttpRequest
{
    QByteArray method; ///< in capitals
    QByteArray target; ///< as sent: still encoded, with its query
    QByteArray body;
    QByteArray cookie;
    QByteArray ifNoneMatch;
    QByteArray ifModifiedSince;
    std::vector<std::pair<QByteArray, QByteArray>> headers; ///< all fields as sent, these included

    /** The first field of that name, given in lower case; empty when there is none. */
    QByteArray header(const char* name) const;

    /** GET and HEAD: the same reply, the connection leaves out the body for HEAD. */
    bool reads() const { return method == "GET" || method == "HEAD"; }
};

/** A reply without the fields that the connection adds: length, date, connection. */
struct HttpReply
{
    int status = 200;
    QByteArray contentType;
    QByteArray body;
    std::vector<std::pair<QByteArray, QByteArray>> headers;
    std::shared_ptr<QFile> file = {}; ///< open: sent instead of `body`, piece by piece from where it stands
    qint64 fileSize = 0;              ///< bytes of it to send

    qint64 bodySize() const { return file ? fileSize : body.size(); }
};

/** A reply and how it is to be spoilt on its way; without any fault it is simply sent. */
struct Answer
{
    HttpReply reply;
    /** When set, the reply takes a while: called again and again, others in between, until it returns it. */
    std::function<std::optional<HttpReply>()> work = {};
    std::chrono::milliseconds delay{0};
    std::optional<qint64> cutAfter = {}; ///< bytes of the body after which the connection is closed
    bool reset = false;                  ///< no reply at all: the connection is reset
    bool shaped = true;                  ///< false: the imitated line is bypassed
};

} // namespace documents
