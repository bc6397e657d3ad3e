#include "nheliostat/framework/ShellCloudSvrProxy.h"

QString ShellCloudSvrProxy::folderUpload(const QString&, const QString&, const QString&, QObject*,
                                         const char*, const QString&)
{
    return {};
}

QString ShellCloudSvrProxy::batchUploadFileListToAnyExistedPath(const QString&, const QString&,
                                                                const QStringList&, const QString&, bool,
                                                                QObject*, const char*, const QString&)
{
    return {};
}

QString ShellCloudSvrProxy::downloadDir(const QString&, const QStringList&, const QString&, QObject*,
                                        const QString&)
{
    return {};
}

QString ShellCloudSvrProxy::downloadCloudFiles(const QStringList&, const QString&, const QString&, QObject*,
                                               const char*)
{
    return {};
}

QString ShellCloudSvrProxy::callCloudMethod(const QString&, const QStringList&, QObject*, const char*)
{
    return {};
}
