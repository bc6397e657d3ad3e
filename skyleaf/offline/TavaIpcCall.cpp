#include "offline/TavaIpcCall.h"

#include "nheliostat/NHelioCloudSvrProxy.h"

#include "tava/TavaIpc_types.h"

void sendTavaIpcCall(NHelioCloudSvrProxy& cloud, const QString& method,
                     const QMap<QString, QString>& arguments)
{
    vlt::tava::TavaIpcArg record;
    record.method = method.toStdString();
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument)
        record.argMap.emplace(argument.key().toStdString(), argument.value().toStdString());
    cloud.invokeCloudFunction(QStringLiteral("tavaIpcCall"), QGenericArgument("TavaIpcArg", &record), nullptr,
                              "");
}
