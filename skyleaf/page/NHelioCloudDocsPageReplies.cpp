#include "page/NHelioCloudDocsPage.h"

#include "base/NDocsLog.h"
#include "bridge/NHelioCloudDocsAsynJsObj.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "offline/NDOPResourceManager.h"
#include "page/DocsUrl.h"
#include "proxy/NCloudDocsRecordManager.h"
#include "proxy/NConfigCentreValues.h"
#include "proxy/NPackageRecords.h"
#include "proxy/NVersionCheckCache.h"
#include "server/DocsRequests.h"
#include "server/ReplyParsers.h"

// What the documents server's answers change: the front version of the page, and what the bridge hands to the
// script.

namespace {

bool isReply(const NCloudDocsRequestTaskResult& result, const QString& name)
{
    return result.replyName.compare(name, Qt::CaseInsensitive) == 0;
}

QString changedVersionText(const replyparsers::EnvConfigReply& reply)
{
    return QStringLiteral("front ver changed!  old front ver %1 and new front ver %2")
        .arg(reply.sentFrontVer, reply.frontVer);
}

} // namespace

void NHelioCloudDocsPage::onRequestTaskFinished(const NCloudDocsRequestTaskResult& result)
{
    if (result.fileId != m_fileId)
        return;
    m_replyTimer.restart();
    if (isReply(result, docsrequests::packageInfo)) {
        ndocslog::info(QStringLiteral("handle pck ingo"), "NHelioCloudDocsPage::onRequestTaskFinished");
        replyparsers::handleResPckInfoResponse(result.officeType, result.data, result.frontVer);
    } else if (isReply(result, docsrequests::envConfig)) {
        _handleEnvConfig(result);
        keepResult(result);
    } else if (isReply(result, docsrequests::versionCheck)) {
        _handleVcs(result);
    } else {
        keepResult(result);
    }
}

void NHelioCloudDocsPage::connectTaskToBridge()
{
    constexpr auto queuedOnce = static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::UniqueConnection);
    m_jsObj->setOfficeType(m_officeType);
    connect(m_requestTask.get(), &NCloudDocsRequestTask::sigRequestFromApiFinished, m_jsObj,
            &NHelioCloudDocsAsynJsObj::onNetworkRequestFinish, queuedOnce);
    connect(m_requestTask.get(), &NCloudDocsRequestTask::sigAppendResponseCookies, this,
            &NHelioCloudDocsPage::onAppendResponseCookies, queuedOnce);
}

/** The request task, whose results for scripts reach the bridge. */
NCloudDocsRequestTask& NHelioCloudDocsPage::requestTaskForScript()
{
    ensureRequestTask();
    if (m_jsObj)
        connectTaskToBridge();
    return *m_requestTask;
}

void NHelioCloudDocsPage::uploadPackage(const QString& url, const QString& packageInfo,
                                        const QString& zipPath)
{
    requestTaskForScript().startDataUpgrade(url, packageInfo, zipPath);
}

void NHelioCloudDocsPage::downloadPackage(const QString& url, const QString& savePath)
{
    requestTaskForScript().startDownloadFileFromURL(url, savePath);
}

std::optional<NPreloadedReply> NHelioCloudDocsPage::preloadedReply(const QString& key) const
{
    const auto found = m_requestResults.constFind(key);
    if (found == m_requestResults.constEnd() || m_requestResultsFileId != m_fileId)
        return std::nullopt;
    return *found;
}

QJsonObject NHelioCloudDocsPage::openFileRequestBody() const
{
    return m_requestTask ? m_requestTask->getOpenFileRequestBody() : QJsonObject();
}

QList<QPair<QByteArray, QByteArray>> NHelioCloudDocsPage::openFileResponseHeaders() const
{
    return m_requestTask ? m_requestTask->getOpenFileResponseHeaders()
                         : QList<QPair<QByteArray, QByteArray>>();
}

void NHelioCloudDocsPage::keepResult(const NCloudDocsRequestTaskResult& result)
{
    if (result.replyName.isEmpty())
        return;
    if (m_requestResultsFileId != result.fileId)
        m_requestResults.clear();
    m_requestResultsFileId = result.fileId;
    m_requestResults.insert(result.replyName, {result.data, result.startTime, result.endTime});
    if (m_jsObj)
        m_jsObj->forwardPreloadRequest(result.replyName, result.data, result.startTime, result.endTime);
}

/** The page held its load back for the version check; it goes on with what is known now. */
void NHelioCloudDocsPage::endVcsWait()
{
    if (!m_waitingForVcs)
        return;
    m_waitingForVcs = false;
    loadNormalized();
}

void NHelioCloudDocsPage::loadNormalized()
{
    if (!m_browser)
        return;
    normalizeUrl(m_notify_URL);
    initDocsLocalResource();
    showUrl();
}

void NHelioCloudDocsPage::_handleVcs(const NCloudDocsRequestTaskResult& result)
{
    constexpr auto operation = "NHelioCloudDocsPage::_handleVcs";
    if (m_vcsTimeoutTimer)
        m_vcsTimeoutTimer->stop();
    if (nconfigvalues::isDelayedLoadOn()) {
        _handleVcsWithDelayLoadUrl(result);
        return;
    }
    const replyparsers::VersionCheckReply reply = replyparsers::parseVcsResult(result);
    const bool wasUnknown = m_officeType.isEmpty();
    if (wasUnknown && !reply.officeType.isEmpty()) {
        m_officeType = reply.officeType;
        nversioncheckcache::set(m_fileId, m_officeType);
    }
    // A page that learned its type by itself meanwhile waits no longer either.
    endVcsWait();
    if (wasUnknown)
        ndocslog::info(QStringLiteral("vcs office type is %1").arg(reply.officeType), operation);
    if (reply.clientVersion.isEmpty()) {
        ndocslog::info(QStringLiteral("vcs front ver version is empty"), operation);
        return;
    }
    m_requestedFrontVer = reply.clientVersion;
    npackagerecords::setCheckedVersion(m_officeType, result.frontVer, reply.clientVersion);
    ndocslog::info(
        QStringLiteral("current version %1 and new version %2").arg(result.frontVer, reply.clientVersion),
        operation);
}

void NHelioCloudDocsPage::_handleVcsWithDelayLoadUrl(const NCloudDocsRequestTaskResult& result)
{
    constexpr auto operation = "NHelioCloudDocsPage::_handleVcsWithDelayLoadUrl";
    const replyparsers::VersionCheckReply reply = replyparsers::parseVcsResult(result);
    if (m_officeType.isEmpty())
        m_officeType = reply.officeType;
    endVcsWait();
    if (reply.clientVersion.isEmpty()) {
        ndocslog::info(QStringLiteral("vcs front ver version is empty"), operation);
        return;
    }
    m_requestedFrontVer = reply.clientVersion;
    ndocslog::info(QStringLiteral("requested front ver is %1").arg(m_requestedFrontVer), operation);
    npackagerecords::setCheckedVersion(m_officeType, result.frontVer, reply.clientVersion);
    ndocslog::info(
        QStringLiteral("current version %1 and new version %2").arg(result.frontVer, reply.clientVersion),
        operation);
    _handleDelayLoadUrlAfterRequest(m_requestedFrontVer);
}

void NHelioCloudDocsPage::_handleEnvConfig(const NCloudDocsRequestTaskResult& result)
{
    constexpr auto operation = "NHelioCloudDocsPage::_handleEnvConfig";
    if (nconfigvalues::isDelayedLoadOn()) {
        _handleEnvConfigWithDelayLoadUrl(result);
        return;
    }
    NCloudDocsRecordManager* records = NCloudDocsRecordManager::instance();
    if (!records)
        return;
    const replyparsers::EnvConfigReply reply = replyparsers::parseEnvConfigResult(result);
    if (reply.frontVer.isEmpty()) {
        ndocslog::info(QStringLiteral("env config front ver is empty"), operation);
        return;
    }
    if (reply.frontVer.compare(reply.sentFrontVer, Qt::CaseInsensitive) == 0) {
        ndocslog::info(QStringLiteral("handle env config front ver not updated"), operation);
        return;
    }
    ndocslog::info(changedVersionText(reply), operation);
    if (!nconfigvalues::isProxyResetOn()) {
        ndocslog::info(QStringLiteral("reseting proxy is not enabled"), operation);
        return;
    }
    if (!m_browser || !m_browser->webViewContainer()) {
        ndocslog::info(QStringLiteral("browser or webview is not ready"), operation);
        return;
    }
    records->updateEnvConfigRecord(reply.fileId, reply.frontVer);
    NDocsOfflinePage::NDOPResourceManager::instance()->loadLocalResources(m_fileId, m_officeType,
                                                                          reply.frontVer);
    if (m_proxyManager && !m_proxyManager->updateProxy(proxyInfo(reply.frontVer)))
        _refreshOnLocalResourceResetFail();
}

void NHelioCloudDocsPage::_handleEnvConfigWithDelayLoadUrl(const NCloudDocsRequestTaskResult& result)
{
    constexpr auto operation = "NHelioCloudDocsPage::_handleEnvConfigWithDelayLoadUrl";
    const replyparsers::EnvConfigReply reply = replyparsers::parseEnvConfigResult(result);
    m_requestedFrontVer = reply.frontVer;
    if (m_requestedFrontVer.isEmpty()) {
        ndocslog::info(QStringLiteral("env config front ver is empty"), operation);
        return;
    }
    if (reply.frontVer.compare(reply.sentFrontVer, Qt::CaseInsensitive) != 0) {
        ndocslog::info(changedVersionText(reply), operation);
        if (NCloudDocsRecordManager* records = NCloudDocsRecordManager::instance())
            records->updateEnvConfigRecord(reply.fileId, reply.frontVer);
    } else {
        ndocslog::info(QStringLiteral("handle env config front ver not updated"), operation);
    }
    _handleDelayLoadUrlAfterRequest(m_requestedFrontVer);
}

void NHelioCloudDocsPage::_handleDelayLoadUrlAfterRequest(const QString& frontVer)
{
    constexpr auto operation = "NHelioCloudDocsPage::_handleDelayLoadUrlAfterRequest";
    if (!m_browser || !m_browser->webViewContainer()) {
        ndocslog::info(QStringLiteral("webview not ready"), operation);
    } else if (m_delayLoadFinished) {
        ndocslog::info(QStringLiteral("delay load finished"), operation);
    } else if (m_delayLoadTimer && m_delayLoadTimer->isActive()) {
        m_delayLoadTimer.reset();
        ndocslog::info(QStringLiteral("desotry delay load timer"), operation);
        _updateProxy(frontVer);
    } else {
        ndocslog::info(QStringLiteral("delay load timer not start yet"), operation);
    }
}

void NHelioCloudDocsPage::_refreshOnLocalResourceResetFail()
{
    constexpr qint64 longestRunMs = 500;
    if (!m_browser || m_webFileReady || m_localResetRefreshed)
        return;
    m_localResetRefreshed = true;
    if (m_runTimer.isValid() && m_runTimer.elapsed() > longestRunMs)
        return;
    m_notify_URL = docsurl::withoutLocalPackageItems(m_notify_URL);
    showUrl();
    ndocslog::info(QStringLiteral("params removed, url is %1").arg(m_notify_URL),
                   "NHelioCloudDocsPage::_refreshOnLocalResourceResetFail");
}
