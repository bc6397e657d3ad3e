#include "server/NCloudDocsRequestTask.h"

#include "base/NDocsLog.h"
#include "proxy/NCloudDocsRecordManager.h"
#include "proxy/NDOPConfig.h"
#include "proxy/NDOPSettings.h"
#include "proxy/NPackagePaths.h"
#include "proxy/NPackageRecords.h"

#include <QFileInfo>
#include <QUrl>

using NDocsOfflinePage::NDOPConfig;

namespace nrequestrun {
namespace {

constexpr auto pathOperation = "NCloudDocsRequestTask::retrieveDopPluginPath";

QString recordedPath(const NCloudDocsRequestTaskParam& param)
{
    const NCloudDocsRecordManager* records = NCloudDocsRecordManager::instance();
    const EnvConfigRecord record =
        records ? records->retrieveEnvConfigRecord(param.fileId) : EnvConfigRecord();
    if (!record.isUsable())
        return {};
    const QString path = records->retrievePluginPathRecord(param.officeType, record.frontVer);
    if (path.isEmpty()) {
        ndocslog::info(QStringLiteral("front ver %1 plugin path record is empty").arg(record.frontVer),
                       pathOperation);
        return {};
    }
    if (QFileInfo::exists(path))
        return path;
    ndocslog::info(
        QStringLiteral("front ver %1 plugin path record %2 does not exists").arg(record.frontVer, path),
        pathOperation);
    return {};
}

} // namespace

QString retrieveDopPluginPath(const NCloudDocsRequestTaskParam& param)
{
    QString path = recordedPath(param);
    if (path.isEmpty())
        path = npackagepaths::upgradedOrInstalled(NDOPConfig::instance().pluginName(param.officeType));
    ndocslog::info(QStringLiteral("using plugin %1").arg(path), pathOperation);
    return path;
}

bool isFrontVerMustUpgrade(const QString& frontVer, const QString& url)
{
    if (frontVer.isEmpty() || url.isEmpty() || nsettingsvalues::isLocalResourceCheckDisabled())
        return false;
    const QString officeType = NDOPConfig::instance().officeTypeOfUrl(url);
    return !officeType.isEmpty() && npackagerecords::mustUpgrade(officeType, frontVer);
}

} // namespace nrequestrun

NCloudDocsRequestTask::NCloudDocsRequestTask(QObject* parent)
    : QObject(parent)
    , m_client(new NHelioCloudDocsNetwork(this))
{
    qRegisterMetaType<NCloudDocsRequestTaskResult>("NCloudDocsRequestTaskResult");
    qRegisterMetaType<QList<QNetworkCookie>>("QList<QNetworkCookie>");
    connect(m_client, &NHelioCloudDocsNetwork::sigRequestFromHostWidgetFinished, this,
            &NCloudDocsRequestTask::onCloudDocRequestFinished);
    connect(m_client, &NHelioCloudDocsNetwork::sigRequestFromApiFinished, this,
            &NCloudDocsRequestTask::sigRequestFromApiFinished, Qt::QueuedConnection);
    connect(m_client, &NHelioCloudDocsNetwork::sigAppendResponseCookies, this,
            &NCloudDocsRequestTask::sigAppendResponseCookies, Qt::QueuedConnection);
    connect(m_client, &NHelioCloudDocsNetwork::sigStartPreRequest, this,
            &NCloudDocsRequestTask::onStartedPreRequest);
}

NCloudDocsRequestTask::~NCloudDocsRequestTask()
{
    delete m_client;
}

void NCloudDocsRequestTask::startRequest(const NCloudDocsRequestTaskParam& param)
{
    if (param.fileId.isEmpty() || param.url.isEmpty() || !QUrl(param.url).isValid())
        return;
    const QString path = nrequestrun::retrieveDopPluginPath(param);
    if (path.isEmpty())
        return;
    m_mustUpgrade = param.flag;
    m_buildTime = param.buildTime;
    m_second = param.second;
    m_fileId = param.fileId;
    m_officeType = param.officeType;
    m_url = param.url;
    m_connId = param.connId;
    m_injectId = param.injectId;
    m_frontVer = npackagepaths::readPluginVersion(path);
    m_mustUpgrade = nrequestrun::isFrontVerMustUpgrade(m_frontVer, m_url);

    m_client->setRequestParams(m_buildTime, m_second, m_frontVer, m_mustUpgrade);
    m_client->setStartTimeFromUrl(m_url);
    m_client->setConnId(m_connId);
    m_client->setInjectId(m_injectId);
    m_client->startPreRequests(m_fileId, m_officeType);
}

void NCloudDocsRequestTask::startVcsRequest(const QString& key)
{
    if (key.isEmpty())
        return;
    m_fileId = key;
    m_client->startVcsRequest(key);
}

void NCloudDocsRequestTask::startDataUpgrade(const QString& url, const QString& packageInfo,
                                             const QString& filePath)
{
    ndocslog::info(QStringLiteral("start data upgrade"), "NCloudDocsRequestTask::startDataUpgrade");
    m_client->startDataUpgrade(url, packageInfo, filePath);
}

void NCloudDocsRequestTask::startDownloadFileFromURL(const QString& url, const QString& savePath)
{
    ndocslog::info(QStringLiteral("start download file from url"),
                   "NCloudDocsRequestTask::startDownloadFileFromURL");
    m_client->startDownloadFileFromURL(url, savePath);
}

QJsonObject NCloudDocsRequestTask::getOpenFileRequestBody() const
{
    ndocslog::info(QStringLiteral("get open file request body"),
                   "NCloudDocsRequestTask::getOpenFileRequestBody");
    return m_client->openFileRequestBody();
}

NHelioCloudDocsNetwork::HeaderPairs NCloudDocsRequestTask::getOpenFileResponseHeaders() const
{
    ndocslog::info(QStringLiteral("get open file request header"),
                   "NCloudDocsRequestTask::getOpenFileResponseHeaders");
    return m_client->openFileResponseHeaders();
}

void NCloudDocsRequestTask::onStartedPreRequest()
{
    Q_EMIT sigStartedPreRequest();
}

void NCloudDocsRequestTask::onCloudDocRequestFinished(const QString& replyName, const QString& officeType,
                                                      const QByteArray& body, qint64 startMs, qint64 endMs,
                                                      const QString& frontVer)
{
    Q_UNUSED(officeType) // the task's own counts
    NCloudDocsRequestTaskResult result;
    result.replyName = replyName;
    result.fileId = m_fileId;
    result.officeType = m_officeType;
    result.connId = m_connId;
    result.injectId = m_injectId;
    result.startTime = startMs;
    result.endTime = endMs;
    result.frontVer = frontVer;
    result.data = body;
    Q_EMIT requestTaskFinished(result);
}
