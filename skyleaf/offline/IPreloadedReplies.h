#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QPair>
#include <QString>

#include <optional>

/** A reply of the documents server that was fetched in advance. Times are milliseconds since the epoch. */
struct NPreloadedReply
{
    QByteArray body;
    qint64 startTime = 0;
    qint64 endTime = 0;
};

/** The replies that a page fetched in advance; the page answers. */
class IPreloadedReplies
{
public:
    virtual ~IPreloadedReplies() = default;

    /** By the reply's name; none before it has arrived. */
    virtual std::optional<NPreloadedReply> preloadedReply(const QString& key) const = 0;

    // Of the request "open_file"; empty before it was sent and answered.
    virtual QJsonObject openFileRequestBody() const = 0;
    virtual QList<QPair<QByteArray, QByteArray>> openFileResponseHeaders() const = 0;
};
