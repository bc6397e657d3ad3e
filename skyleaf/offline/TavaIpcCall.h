#pragma once

#include <QMap>
#include <QString>

class NHelioCloudSvrProxy;

/** Calls a method of the cloud service process by its name; no answer is wanted. User-interface thread. */
void sendTavaIpcCall(NHelioCloudSvrProxy& cloud, const QString& method,
                     const QMap<QString, QString>& arguments);
