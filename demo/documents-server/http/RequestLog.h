#pragma once

#include <deque>
#include <utility>
#include <vector>

#include <QByteArray>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

namespace documents {

/** One request as it ended. */
struct LoggedRequest
{
    qint64 time = 0; ///< when it had been read, milliseconds since the epoch
    QByteArray method;
    QByteArray target;
    int status = 0;   ///< 0 when the connection was reset instead of answered
    qint64 bytes = 0; ///< sent, head and body
    std::vector<std::pair<QByteArray, QByteArray>> headers = {};
    QByteArray body = {}; ///< of a POST, at most its first 4 KiB
};

/**
 * As members "t", "method", "target", "status", "bytes", "userAgent", "cookie", "cookies", "origin", "body"
 * and "headers", an object of all fields by their names in lower case. "cookies" names those of "vlt_sid",
 * "vltua" and "weboffice_branch" that came with a value; the values themselves are nowhere.
 */
QJsonObject toJson(const LoggedRequest& request);

/** The part of a POST's body that the log keeps. */
QByteArray loggedBody(const QByteArray& method, const QByteArray& body);

/**
 * Numbers requests from 1 on in the order in which they end. Keeps the last thousand requests in memory and,
 * when asked to, appends every request to a file, one JSON object a line. Requests of the control resource go
 * to the file only. For one thread.
 */
class RequestLog
{
public:
    /** Appends to that file from now on; false with `errorText` when it cannot be opened. */
    bool appendTo(const QString& path, QString* errorText);

    void record(const LoggedRequest& request);

    /** The requests kept that are numbered above `since`, oldest first, each with its number as "seq". */
    QJsonArray recent(qint64 since = 0) const;
    /** The number of the last request, 0 before the first. */
    qint64 lastNumber() const { return m_lastNumber; }

private:
    std::deque<LoggedRequest> m_recent; ///< without gaps up to the last number
    qint64 m_lastNumber = 0;
    QFile m_file;
};

} // namespace documents
