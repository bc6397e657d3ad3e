#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>

namespace NDocsOfflinePage {

/** A reply of the documents server that was fetched in advance. Times are milliseconds since the epoch. */
struct NDOPResponseData
{
    QByteArray body;
    QList<QPair<QByteArray, QByteArray>> headers; //!< as they came; a name may stand more than once
    int status = 200;                             //!< the browser gets what came with 200 only
    qint64 startTime = 0;
    qint64 endTime = 0;
};

} // namespace NDocsOfflinePage
