#include "page/NDocumentLoad.h"

#include "base/NDocsLog.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "page/DocsUrl.h"
#include "page/NOpenTelemetry.h"
#include "page/NTakeOver.h"
#include "page/OpenEvents.h"
#include "proxy/NConfigCentreValues.h"
#include "proxy/NDOPConfig.h"

#include <QUrl>

using NDocsOfflinePage::NDOPConfig;
using NDocsOfflinePage::NRunData;

// What a load asks the documents server.

void NDocumentLoad::startRequests()
{
    if (m_officeType.isEmpty())
        _startVcsRequest();
    else if (NDOPConfig::instance().isDopEnabled(m_officeType))
        _startNetworkRequest();
}

void NDocumentLoad::_startNetworkRequest()
{
    constexpr auto operation = "NHelioCloudDocsPage::_startNetworkRequest";
    const qint64 lifetimeMs = nconfigvalues::responseDataLifetimeMs();
    ndocslog::info(QStringLiteral("request data lifetime: %1").arg(lifetimeMs), operation);
    if (m_replyTimer.isValid() && m_replyTimer.elapsed() > lifetimeMs) {
        ndocslog::info(QStringLiteral("data expired"), operation);
        m_isRunStarted = false;
    }
    if (m_isRunStarted) {
        ndocslog::info(QStringLiteral("already request"), operation);
        return;
    }
    const NTimedStep timed = m_host.loadTelemetry().timedStep(QStringLiteral("network_request"));
    const QUrl url(m_url);
    if (url.path().startsWith(QLatin1String("/office/new/"))) {
        ndocslog::info(QStringLiteral("/office/new/ no need to request"), operation);
        return;
    }
    m_fileId = docsurl::lastSegmentOf(url);
    if (m_fileId.isEmpty()) {
        ndocslog::info(QStringLiteral("empty file id"), operation);
        return;
    }
    if (NDOPConfig::instance().isHybridUrl(url))
        startRun();
}

void NDocumentLoad::startRun()
{
    ndocslog::info(QStringLiteral("start request"), "NHelioCloudDocsPage::_startNetworkRequest");
    m_isRunStarted = true;
    m_url = docsurl::withQueryItem(m_url, QStringLiteral("sdkversion"), QStringLiteral("3.0.7"));
    makeRunData();
    ensureRequestTask();
    NCloudDocsRequestTaskParam param;
    param.fileId = m_fileId;
    param.officeType = m_officeType;
    param.url = m_url;
    param.connId = m_run->identity().connId;
    param.injectId = m_run->identity().injectId;
    m_replyTimer.invalidate();
    m_task->startRequest(param);
    m_runTimer.start();
    if (isShown())
        installForRun();
}

void NDocumentLoad::makeRunData()
{
    const QString connId = docsurl::newIdentifier();
    const QString injectId = docsurl::newIdentifier();
    ndocslog::info(QStringLiteral("injectId: %1 connid: %2").arg(injectId, connId),
                   "NHelioCloudDocsPage::_startNetworkRequest");
    m_run = std::make_unique<NRunData>(
        NDocsOfflinePage::NRunIdentity{connId, injectId, m_fileId, m_officeType}, m_url);
}

/** What is served belongs to the present run from now on; nothing is shown anew. */
void NDocumentLoad::installForRun()
{
    NCloudDocsPageProxyManager& proxies = m_host.loadProxies();
    if (m_requestedFrontVer.isEmpty())
        proxies.setProxy(proxyInfo());
    else
        proxies.updateProxy(proxyInfo(m_requestedFrontVer));
}

void NDocumentLoad::_waitStartedPreRequest()
{
    if (!m_host.loadTakeOver().isUsed() || !m_task)
        return;
    if (m_task->hasStartedPreRequest()) {
        _handlePreloadDocFrameworkWork();
        return;
    }
    connect(m_task.get(), &NCloudDocsRequestTask::sigStartedPreRequest, this,
            &NDocumentLoad::onStartedPreRequest, Qt::UniqueConnection);
}

void NDocumentLoad::onStartedPreRequest()
{
    _handlePreloadDocFrameworkWork();
}

void NDocumentLoad::_startVcsRequest()
{
    constexpr auto operation = "NHelioCloudDocsPage::_startVcsRequest";
    if (!m_officeType.isEmpty() || m_url.isEmpty() || m_isVersionAsked ||
        !NDocsOfflinePage::isDopMasterSwitchOn()) {
        ndocslog::info(QStringLiteral("can not start vcs request"), operation);
        return;
    }
    const QUrl url(m_url);
    if (!url.isValid()) {
        ndocslog::info(QStringLiteral("%1 not valid").arg(m_url), operation);
        return;
    }
    if (!docsurl::isDocumentUrl(url)) {
        ndocslog::info(QStringLiteral("%1 not cloud docs url").arg(m_url), operation);
        return;
    }
    m_fileId = docsurl::lastSegmentOf(url);
    if (m_fileId.isEmpty())
        return;
    m_isVersionAsked = true;
    if (!nconfigvalues::isVersionCheckOn()) {
        ndocslog::info(QStringLiteral("vcs switch off"), operation);
        return;
    }
    advance(LoadEvent::CheckVersion);
    ensureRequestTask();
    m_task->startVcsRequest(m_fileId);
    m_versionTimer.start(nconfigvalues::versionCheckTimeoutMs());
    ndocslog::info(QStringLiteral("start vcs request"), operation);
}

void NDocumentLoad::ensureRequestTask()
{
    if (m_task)
        return;
    m_task = std::make_unique<NCloudDocsRequestTask>(this);
    if (m_isVersionChecked)
        m_task->setVersionAsked();
    connect(m_task.get(), &NCloudDocsRequestTask::requestTaskFinished, this,
            &NDocumentLoad::onRequestTaskFinished);
    connect(m_task.get(), &NCloudDocsRequestTask::sigAppendResponseCookies, this, &NDocumentLoad::cookiesCame,
            Qt::QueuedConnection);
}

void NDocumentLoad::onVcsResponseTimeout()
{
    ndocslog::info(QStringLiteral("vcs response is time out"), "NHelioCloudDocsPage::onVcsResponseTimeout");
    advance(LoadEvent::Release);
    loadNormalized();
    openevents::post(QStringLiteral("docs_cloud_vcsrequesttimeout"),
                     {{QStringLiteral("notifyUrl"), m_url}, {QStringLiteral("fileId"), m_fileId}});
}
