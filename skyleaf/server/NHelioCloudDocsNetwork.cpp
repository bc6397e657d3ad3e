#include "server/NHelioCloudDocsNetwork.h"

#include "base/NClock.h"
#include "base/NDocsLog.h"
#include "base/NDomains.h"
#include "nheliostat/NHelioApplication.h"
#include "nrt/modules.h"
#include "offline/NDOPResourceManager.h"
#include "offline/NHelioCloudDocsLocalData.h"
#include "proxy/NConfigCentreValues.h"
#include "proxy/NDOPConfig.h"
#include "server/DocsRequests.h"
#include "server/RequestIdentity.h"
#include "zeolite/NCoreApplication.h"

#include <QJsonDocument>
#include <QLibrary>
#include <QPointer>

using NDocsOfflinePage::NDOPConfig;
using NDocsOfflinePage::NDOPResourceManager;

namespace {

QString serviceUrl(const QString& path)
{
    const QString origin = ndomains::url(QStringLiteral("quill_api"));
    return origin.isEmpty() ? QString() : origin + path;
}

} // namespace

NHelioCloudDocsNetwork::NHelioCloudDocsNetwork(QObject* requestTask)
    : QObject(requestTask)
{
}

void NHelioCloudDocsNetwork::setRequestParams(qint64 buildTime, qint64 second, const QString& frontVer,
                                              bool mustUpgrade)
{
    m_buildTime = buildTime;
    m_second = second;
    m_frontVer = frontVer;
    m_mustUpgrade = mustUpgrade;
}

void NHelioCloudDocsNetwork::setStartTimeFromUrl(const QString& pageUrl)
{
    m_startTime = docsrequests::startTimeOf(pageUrl);
}

bool NHelioCloudDocsNetwork::ensureNetworkManager()
{
    if (m_networkManager)
        return true;
    const std::shared_ptr<QLibrary> library = nrt::loadPluginModule(QStringLiteral("nnetwork"));
    const auto create =
        library ? reinterpret_cast<NCreateNetworkManager>(library->resolve("createNetworkManager")) : nullptr;
    std::shared_ptr<INetworkManager> manager;
    if (!create || !create(&manager, {}, {}, {}, {}) || !manager)
        return false;
    manager->setTag(QStringLiteral("skyleaf"));
    m_networkManager = std::move(manager);
    return true;
}

bool NHelioCloudDocsNetwork::canSend() const
{
    const NHelioApplication* application = NHelioApplication::instance();
    NCoreApplication* core = NCoreApplication::instance();
    return m_networkManager && application && application->cloudSvrProxy() && core && core->getDomainMgr();
}

void NHelioCloudDocsNetwork::startPreRequests(const QString& fileId, const QString& officeType)
{
    if (m_fileId != fileId)
        forgetLocalData();
    m_fileId = fileId;
    m_officeType = officeType;
    m_startedPreRequest = false;
    if (!m_localData) {
        m_localData = new NHelioCloudDocsLocalData(this);
        connect(m_localData, &NHelioCloudDocsLocalData::queryFinish, this,
                &NHelioCloudDocsNetwork::onQueryLocalDataFinish);
    }
    ensureNetworkManager();
    if (!startVcsRequest({}))
        _startGetResPckInfo();
    if (!m_localData->query(m_fileId))
        onQueryLocalDataFinish();
}

/** A query that fails leaves what was known, which must not be another file's. */
void NHelioCloudDocsNetwork::forgetLocalData()
{
    delete m_localData;
    m_localData = nullptr;
}

void NHelioCloudDocsNetwork::onQueryLocalDataFinish()
{
    const auto manager = NDOPResourceManager::instance();
    if (m_localData && manager) {
        manager->setInjectFileInfo(m_injectId, m_localData->rawData());
        manager->setInjectPackagePaths(m_injectId,
                                       m_localData->dataValue(QStringLiteral("pkgSyncPath")).toString(),
                                       m_localData->dataValue(QStringLiteral("pkgCachePath")).toString());
    }
    m_startedPreRequest = true;
    Q_EMIT sigStartPreRequest();
    if (m_fileId.isEmpty())
        return;
    _startGetOfficeConfigInfo(1);
    _startGetOfficeConfigInfo(0);
    _startGetFirstScreenData();
}

bool NHelioCloudDocsNetwork::startVcsRequest(const QString& key)
{
    if (!ensureNetworkManager() || !canSend())
        return false;
    const QString pathKey = key.isEmpty() ? m_fileId : key;
    if (pathKey.isEmpty() || !nconfigvalues::isVersionCheckOn())
        return false;
    DocsRequest request;
    request.url = serviceUrl(docsrequests::versionCheckPath(pathKey, m_officeType));
    if (request.url.isEmpty())
        return false;
    if (m_vcsStarted)
        return true;
    m_vcsStarted = true;
    request.headers = {{QStringLiteral("Accept"), QByteArrayLiteral("application/json")},
                       {QStringLiteral("User-Agent"), requestidentity::pageUserAgent()}};
    sendGet(request, docsrequests::versionCheck, pathKey);
    ndocslog::info(request.url, "NHelioCloudDocsNetwork::startVcsRequest");
    return true;
}

void NHelioCloudDocsNetwork::_startGetResPckInfo()
{
    const QString path = docsrequests::packageInfoPath();
    const QString packageName = NDOPConfig::instance().packageName(m_officeType);
    DocsRequest request;
    request.url = serviceUrl(path);
    if (!canSend() || request.url.isEmpty() || packageName.isEmpty())
        return;
    requestidentity::authenticate(request, QStringLiteral("POST"), path);
    request.headers.insert(QStringLiteral("Origin"), requestidentity::originHost());
    requestoverride::writeCookies(request);
    request.headers.insert(QStringLiteral("User-Agent"), NxUserAgentUtil::getUserAgent());
    sendPost(request, docsrequests::packageInfoBody(packageName, m_frontVer, m_buildTime),
             docsrequests::packageInfo, m_fileId);
    ndocslog::info(QStringLiteral("_startGetResPckInfo url:%1").arg(request.url),
                   "NHelioCloudDocsNetwork::_startGetResPckInfo");
}

void NHelioCloudDocsNetwork::_startGetOfficeConfigInfo(int officeConfigType)
{
    const bool ssr = officeConfigType == 1;
    if (ssr && !NDOPConfig::instance().isSsrSupported(m_officeType))
        return;
    const QString path = docsrequests::officeConfigPath(m_fileId, ssr);
    DocsRequest request;
    request.url = serviceUrl(docsrequests::withStartTime(path, m_startTime));
    if (!canSend() || request.url.isEmpty())
        return;
    request.headers = {{QStringLiteral("Accept"), QByteArrayLiteral("application/json")},
                       {QStringLiteral("User-Agent"), requestidentity::pageUserAgent()}};
    requestidentity::authenticate(request, QStringLiteral("GET"), path);
    applyRequestOverride(docsrequests::officeConfigRoute(), request);
    sendGet(request, ssr ? docsrequests::ssrContent : docsrequests::envConfig, m_fileId);
    ndocslog::info(QStringLiteral("_startGetOfficeConfigInfo url:%1, officeConfigType:%2")
                       .arg(request.url)
                       .arg(officeConfigType),
                   "NHelioCloudDocsNetwork::_startGetOfficeConfigInfo");
}

void NHelioCloudDocsNetwork::_startGetFirstScreenData()
{
    const NDOPConfig& config = NDOPConfig::instance();
    const QString packageName = config.packageName(m_officeType);
    const bool isNeeded =
        !m_localData || m_localData->extendsValue(QStringLiteral("isNeedPreopen")).toBool(true);
    if (!config.isPreopenSupported(m_officeType) || !isNeeded || packageName.isEmpty())
        return;
    const QString path = docsrequests::preopenPath(m_fileId, packageName);
    DocsRequest request;
    request.url = serviceUrl(path);
    if (!canSend() || request.url.isEmpty())
        return;
    request.headers = {{QStringLiteral("Origin"), requestidentity::originHost()},
                       {QStringLiteral("User-Agent"), requestidentity::pageUserAgent()}};
    requestidentity::authenticate(request, QStringLiteral("POST"), path);
    request.body = docsrequests::preopenBody(m_frontVer, m_mustUpgrade, m_connId);
    applyRequestOverride(docsrequests::preopenRoute(packageName), request);
    m_openFileRequestBody = request.body;
    sendPost(request, QJsonDocument(request.body).toJson(QJsonDocument::Compact), docsrequests::openFile,
             m_fileId);
    ndocslog::info(QStringLiteral("_startGetFirstScreenData url:%1").arg(request.url),
                   "NHelioCloudDocsNetwork::_startGetFirstScreenData");
}

void NHelioCloudDocsNetwork::applyRequestOverride(const QString& routeKey, DocsRequest& request) const
{
    if (!request.url.isEmpty() && !routeKey.isEmpty() && m_localData) {
        const QJsonValue changes = m_localData->extendsValue(requestoverride::memberName(routeKey));
        requestoverride::apply(changes.toObject(), request);
    }
    requestoverride::writeCookies(request);
}

void NHelioCloudDocsNetwork::abandon()
{
    m_isAbandoned = true;
    if (m_localData)
        m_localData->disconnect(this);
}

/** What was sent before there was a run, as the version check may be, is of every run of its file. */
bool NHelioCloudDocsNetwork::isOfPresentRun(const QString& fileId, const QString& connId) const
{
    return !m_isAbandoned && (m_fileId.isEmpty() || m_fileId == fileId) &&
           (connId.isEmpty() || m_connId == connId);
}

INetworkManager::Completion NHelioCloudDocsNetwork::completionOf(const QString& replyName,
                                                                 const QString& fileId)
{
    const auto startMs = static_cast<quint64>(nclock::nowMs());
    return [client = QPointer<NHelioCloudDocsNetwork>(this), startMs, replyName, fileId, connId = m_connId,
            frontVer = m_frontVer](INetworkReply* reply) {
        if (!client)
            return;
        if (client->isOfPresentRun(fileId, connId)) {
            client->onRequestFinished(reply, startMs, replyName, frontVer);
            return;
        }
        ndocslog::info(QStringLiteral("%1 of file %2 comes too late").arg(replyName, fileId),
                       "NHelioCloudDocsNetwork::onRequestFinished");
        if (reply && reply->request())
            client->_reportNetworkResult(reply->errorCode(), reply->request()->url().toString(),
                                         nclock::nowMs() - qint64(startMs), reply->networkTimeMs(),
                                         replyName);
    };
}

void NHelioCloudDocsNetwork::sendGet(const DocsRequest& request, const QString& replyName,
                                     const QString& fileId)
{
    m_networkManager->get(request.url, request.headers, completionOf(replyName, fileId));
}

void NHelioCloudDocsNetwork::sendPost(const DocsRequest& request, const QByteArray& body,
                                      const QString& replyName, const QString& fileId)
{
    m_networkManager->post(request.url, request.headers, body, this, completionOf(replyName, fileId));
}
