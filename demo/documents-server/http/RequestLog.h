#pragma once

#include <deque>

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
    QByteArray userAgent;
    QByteArray cookie;
};

QJsonObject toJson(const LoggedRequest& request);

/**
 * Keeps the last thousand requests in memory and, when asked to, appends every request to a file, one JSON
 * object a line. Requests of the control resource go to the file only. For one thread.
 */
class RequestLog
{
public:
    /** Appends to that file from now on; false with `errorText` when it cannot be opened. */
    bool appendTo(const QString& path, QString* errorText);

    void record(const LoggedRequest& request);

    /** The requests kept, oldest first. */
    QJsonArray recent() const;

private:
    std::deque<LoggedRequest> m_recent;
    QFile m_file;
};

} // namespace documents
