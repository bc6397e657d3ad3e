#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>

namespace NDocsOfflinePage {

/** A reply of the documents server, kept for the browser's own request of it. */
struct NDOPResponseData
{
    QByteArray body;
    QList<QPair<QByteArray, QByteArray>> headers; //!< names and values as they came
};

} // namespace NDocsOfflinePage
