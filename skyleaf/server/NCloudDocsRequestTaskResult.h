#pragma once

#include <QByteArray>
#include <QMetaType>
#include <QString>

/** One reply of the documents server. Times are milliseconds since the epoch. */
struct NCloudDocsRequestTaskResult
{
    QString replyName;
    QString fileId;
    QString officeType;
    QString connId;
    QString injectId;
    qint64 startTime = 0;
    qint64 endTime = 0;
    QString frontVer; //!< that the request was sent with
    QByteArray data;
};
Q_DECLARE_METATYPE(NCloudDocsRequestTaskResult)
