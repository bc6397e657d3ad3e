#include "server/NCloudDocsRequestTask.h"

#include "base/NDocsLog.h"

// The documents server is not asked yet: no run finds a package, so none sends a request.

NCloudDocsRequestTask::NCloudDocsRequestTask(QObject* page)
    : QObject(page)
{
    qRegisterMetaType<NCloudDocsRequestTaskResult>("NCloudDocsRequestTaskResult");
    qRegisterMetaType<QList<QNetworkCookie>>("QList<QNetworkCookie>");
}

void NCloudDocsRequestTask::startRequest(const NCloudDocsRequestTaskParam& param)
{
    if (param.fileId.isEmpty() || !QUrl(param.url).isValid())
        return;
    ndocslog::info(QStringLiteral("using plugin %1").arg(QString()),
                   "NCloudDocsRequestTask::retrieveDopPluginPath");
}

void NCloudDocsRequestTask::startVcsRequest(const QString& key)
{
    Q_UNUSED(key)
}

void NCloudDocsRequestTask::startDataUpgrade(const QString& url, const QString& packageInfo,
                                             const QString& filePath)
{
    Q_UNUSED(url)
    Q_UNUSED(packageInfo)
    Q_UNUSED(filePath)
    ndocslog::info(QStringLiteral("start data upgrade"), "NCloudDocsRequestTask::startDataUpgrade");
    Q_EMIT sigRequestFromApiFinished(QStringLiteral("data_upgrade"), QByteArray());
}

void NCloudDocsRequestTask::startDownloadFileFromURL(const QString& url, const QString& savePath)
{
    Q_UNUSED(url)
    Q_UNUSED(savePath)
    ndocslog::info(QStringLiteral("start download file from url"),
                   "NCloudDocsRequestTask::startDownloadFileFromURL");
    Q_EMIT sigRequestFromApiFinished(QStringLiteral("download_file"), QByteArrayLiteral("0"));
}

QJsonObject NCloudDocsRequestTask::getOpenFileRequestBody() const
{
    return {};
}

QList<QPair<QByteArray, QByteArray>> NCloudDocsRequestTask::getOpenFileResponseHeaders() const
{
    return {};
}
