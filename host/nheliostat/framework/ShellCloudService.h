#pragma once

#include "vltcloudsvr/client/CloudServiceClient.h"

#include <QMap>
#include <QString>

/** The cloud service of a shell, and what it has to know about the deployment. */
struct ShellCloudService
{
    vlt::cloudsvr::ClientSetup client; //!< without a program there is no service, and every call fails
    QString apiUrl;                    //!< of the documents service
    QMap<QString, QString> resolve;    //!< "host" or "host:port" to "address:port"
};
