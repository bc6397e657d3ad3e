#pragma once

#include <QMap>
#include <QMetaType>
#include <QString>

/** What a call of the cloud service answered. */
struct TavaIpcResult
{
    int code = 0; //!< 0 means success
    QMap<QString, QString> values;
};
Q_DECLARE_METATYPE(TavaIpcResult)
