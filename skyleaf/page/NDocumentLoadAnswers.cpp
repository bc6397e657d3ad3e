#include "page/NDocumentLoad.h"

#include "base/NDocsLog.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "offline/NDOPResourceManager.h"
#include "page/DocsUrl.h"
#include "proxy/NCloudDocsRecordManager.h"
#include "proxy/NConfigCentreValues.h"
#include "proxy/NPackageRecords.h"
#include "proxy/NVersionCheckCache.h"
#include "server/DocsRequests.h"
#include "server/ReplyParsers.h"

using NDocsOfflinePage::NDOPResourceManager;

// What the documents server's answers change.

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

void NDocumentLoad::onRequestTaskFinished(const NCloudDocsRequestTaskResult& result)
{
    if (result.fileId != m_fileId)
        return;
    m_replyTimer.restart();
    if (isReply(result, docsrequests::packageInfo)) {
        ndocslog::info(QStringLiteral("handle pck ingo"), "NHelioCloudDocsPage::onRequestTaskFinished");
        replyparsers::handleResPckInfoResponse(result.officeType, result.data, result.frontVer);
        return;
    }
    if (isReply(result, docsrequests::versionCheck)) {
        _handleVcs(result);
        return;
    }
    if (isReply(result, docsrequests::envConfig))
        _handleEnvConfig(result);
    if (!result.replyName.isEmpty())
        Q_EMIT replyCame(result.replyName, result.data, result.startTime, result.endTime);
}

/** The load was held back for the version check; it goes on with what is known now. */
void NDocumentLoad::endVcsWait()
{
    if (!isWaitingForVersion())
        return;
    advance(LoadEvent::Release);
    loadNormalized();
}

void NDocumentLoad::loadNormalized()
{
    if (!m_host.loadBrowser())
        return;
    take(m_url);
    initDocsLocalResource();
    showUrl();
}

void NDocumentLoad::_handleVcs(const NCloudDocsRequestTaskResult& result)
{
    constexpr auto operation = "NHelioCloudDocsPage::_handleVcs";
    m_versionTimer.stop();
    if (nconfigvalues::isDelayedLoadOn()) {
        _handleVcsWithDelayLoadUrl(result);
        return;
    }
    const replyparsers::VersionCheckReply reply = replyparsers::parseVcsResult(result);
    const bool wasUnknown = m_officeType.isEmpty();
    if (wasUnknown && !reply.officeType.isEmpty()) {
        setOfficeType(reply.officeType);
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
    takeCheckedVersion(result, reply.clientVersion);
}

void NDocumentLoad::_handleVcsWithDelayLoadUrl(const NCloudDocsRequestTaskResult& result)
{
    constexpr auto operation = "NHelioCloudDocsPage::_handleVcsWithDelayLoadUrl";
    const replyparsers::VersionCheckReply reply = replyparsers::parseVcsResult(result);
    if (m_officeType.isEmpty())
        setOfficeType(reply.officeType);
    endVcsWait();
    if (reply.clientVersion.isEmpty()) {
        ndocslog::info(QStringLiteral("vcs front ver version is empty"), operation);
        return;
    }
    m_requestedFrontVer = reply.clientVersion;
    ndocslog::info(QStringLiteral("requested front ver is %1").arg(m_requestedFrontVer), operation);
    takeCheckedVersion(result, reply.clientVersion);
    _handleDelayLoadUrlAfterRequest(m_requestedFrontVer);
}

void NDocumentLoad::takeCheckedVersion(const NCloudDocsRequestTaskResult& result,
                                       const QString& clientVersion)
{
    npackagerecords::setCheckedVersion(m_officeType, result.frontVer, clientVersion);
    ndocslog::info(
        QStringLiteral("current version %1 and new version %2").arg(result.frontVer, clientVersion),
        nconfigvalues::isDelayedLoadOn() ? "NHelioCloudDocsPage::_handleVcsWithDelayLoadUrl"
                                         : "NHelioCloudDocsPage::_handleVcs");
}

void NDocumentLoad::_handleEnvConfig(const NCloudDocsRequestTaskResult& result)
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
    if (!container()) {
        ndocslog::info(QStringLiteral("browser or webview is not ready"), operation);
        return;
    }
    records->updateEnvConfigRecord(reply.fileId, reply.frontVer);
    NDOPResourceManager::instance()->loadLocalResources(m_fileId, m_officeType, reply.frontVer);
    if (!m_host.loadProxies().updateProxy(proxyInfo(reply.frontVer)))
        _refreshOnLocalResourceResetFail();
}

void NDocumentLoad::_handleEnvConfigWithDelayLoadUrl(const NCloudDocsRequestTaskResult& result)
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

void NDocumentLoad::_handleDelayLoadUrlAfterRequest(const QString& frontVer)
{
    constexpr auto operation = "NHelioCloudDocsPage::_handleDelayLoadUrlAfterRequest";
    if (!container()) {
        ndocslog::info(QStringLiteral("webview not ready"), operation);
    } else if (m_isDelayOver) {
        ndocslog::info(QStringLiteral("delay load finished"), operation);
    } else if (m_delayTimer.isActive()) {
        m_delayTimer.stop();
        ndocslog::info(QStringLiteral("desotry delay load timer"), operation);
        advance(LoadEvent::Release);
        _updateProxy(frontVer);
    } else {
        ndocslog::info(QStringLiteral("delay load timer not start yet"), operation);
    }
}

/** The version that the server wants cannot be served from this computer: the server shows the document. */
void NDocumentLoad::_refreshOnLocalResourceResetFail()
{
    constexpr qint64 longestRunMs = 500;
    if (!m_host.loadBrowser() || isWebFileReady() || m_isResetRefreshed)
        return;
    m_isResetRefreshed = true;
    if (m_runTimer.isValid() && m_runTimer.elapsed() > longestRunMs)
        return;
    m_url = docsurl::withoutLocalPackageItems(m_url);
    showUrl();
    ndocslog::info(QStringLiteral("params removed, url is %1").arg(m_url),
                   "NHelioCloudDocsPage::_refreshOnLocalResourceResetFail");
}
