#include "page/NHelioCloudDocsPage.h"

#include "base/NDocsLog.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "offline/NDOPResourceManager.h"
#include "page/DocsUrl.h"
#include "page/OpenEvents.h"
#include "proxy/NConfigCentreValues.h"
#include "proxy/NDOPConfig.h"

using NDocsOfflinePage::NDOPConfig;
using NDocsOfflinePage::NDOPResourceManager;

// Which version of the front end shows the document, and holding the load back until that is known. What the
// server's answers change is in NHelioCloudDocsPageReplies.cpp.

void NHelioCloudDocsPage::_startNetworkRequest()
{
    constexpr auto operation = "NHelioCloudDocsPage::_startNetworkRequest";
    const qint64 lifetimeMs = nconfigvalues::responseDataLifetimeMs();
    ndocslog::info(QStringLiteral("request data lifetime: %1").arg(lifetimeMs), operation);
    if (m_replyTimer.isValid() && m_replyTimer.elapsed() > lifetimeMs) {
        ndocslog::info(QStringLiteral("data expired"), operation);
        m_networkRequestStarted = false;
    }
    if (m_networkRequestStarted) {
        ndocslog::info(QStringLiteral("already request"), operation);
        return;
    }
    const NTimedStep timed(m_steps, QStringLiteral("network_request"));
    const QUrl url(m_notify_URL);
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

void NHelioCloudDocsPage::startRun()
{
    constexpr auto operation = "NHelioCloudDocsPage::_startNetworkRequest";
    ndocslog::info(QStringLiteral("start request"), operation);
    m_networkRequestStarted = true;
    m_pluginName = NDOPConfig::instance().pluginName(m_officeType);
    m_notify_URL =
        docsurl::withQueryItem(m_notify_URL, QStringLiteral("sdkversion"), QStringLiteral("3.0.7"));
    m_connId = docsurl::newIdentifier();
    m_injectId = docsurl::newIdentifier();
    ndocslog::info(QStringLiteral("injectId: %1 connid: %2").arg(m_injectId, m_connId), operation);
    const auto resources = NDOPResourceManager::instance();
    resources->createInjectRecord(m_injectId);
    resources->setInjectConnId(m_injectId, m_connId);
    resources->setInjectUrl(m_injectId, m_notify_URL);

    ensureRequestTask();
    NCloudDocsRequestTaskParam param;
    param.fileId = m_fileId;
    param.officeType = m_officeType;
    param.url = m_notify_URL;
    param.connId = m_connId;
    param.injectId = m_injectId;
    m_requestTask->startRequest(param);
    m_runTimer.start();
}

void NHelioCloudDocsPage::_waitStartedPreRequest()
{
    if (!m_preloadFrameworkUsed || !m_requestTask)
        return;
    if (m_requestTask->hasStartedPreRequest()) {
        _handlePreloadDocFrameworkWork();
        return;
    }
    connect(m_requestTask.get(), &NCloudDocsRequestTask::sigStartedPreRequest, this,
            &NHelioCloudDocsPage::onStartedPreRequest, Qt::UniqueConnection);
}

void NHelioCloudDocsPage::onStartedPreRequest()
{
    _handlePreloadDocFrameworkWork();
}

void NHelioCloudDocsPage::_startVcsRequest()
{
    constexpr auto operation = "NHelioCloudDocsPage::_startVcsRequest";
    if (!m_officeType.isEmpty() || m_notify_URL.isEmpty() || m_vcsRequestStarted ||
        !NDocsOfflinePage::isDopMasterSwitchOn()) {
        ndocslog::info(QStringLiteral("can not start vcs request"), operation);
        return;
    }
    const QUrl url(m_notify_URL);
    if (!url.isValid()) {
        ndocslog::info(QStringLiteral("%1 not valid").arg(m_notify_URL), operation);
        return;
    }
    if (!docsurl::isDocumentUrl(url)) {
        ndocslog::info(QStringLiteral("%1 not cloud docs url").arg(m_notify_URL), operation);
        return;
    }
    m_fileId = docsurl::lastSegmentOf(url);
    if (m_fileId.isEmpty())
        return;
    m_vcsRequestStarted = true;
    if (!nconfigvalues::isVersionCheckOn()) {
        ndocslog::info(QStringLiteral("vcs switch off"), operation);
        return;
    }
    m_waitingForVcs = true;
    if (!m_vcsTimeoutTimer) {
        m_vcsTimeoutTimer = std::make_unique<QTimer>();
        m_vcsTimeoutTimer->setSingleShot(true);
        m_vcsTimeoutTimer->setInterval(nconfigvalues::versionCheckTimeoutMs());
        connect(m_vcsTimeoutTimer.get(), &QTimer::timeout, this, &NHelioCloudDocsPage::onVcsResponseTimeout);
    }
    ensureRequestTask();
    m_requestTask->startVcsRequest(m_fileId);
    m_vcsTimeoutTimer->start();
    ndocslog::info(QStringLiteral("start vcs request"), operation);
}

void NHelioCloudDocsPage::ensureRequestTask()
{
    if (m_requestTask)
        return;
    m_requestTask = std::make_unique<NCloudDocsRequestTask>(this);
    connect(m_requestTask.get(), &NCloudDocsRequestTask::requestTaskFinished, this,
            &NHelioCloudDocsPage::onRequestTaskFinished);
}

void NHelioCloudDocsPage::onVcsResponseTimeout()
{
    m_waitingForVcs = false;
    ndocslog::info(QStringLiteral("vcs response is time out"), "NHelioCloudDocsPage::onVcsResponseTimeout");
    loadNormalized();
    openevents::post(QStringLiteral("docs_cloud_vcsrequesttimeout"),
                     {{QStringLiteral("notifyUrl"), m_notify_URL}, {QStringLiteral("fileId"), m_fileId}});
}

NDOPProxyInfo NHelioCloudDocsPage::proxyInfo(const QString& frontVer) const
{
    NDOPProxyInfo info;
    info.fileId = m_fileId;
    info.officeType = m_officeType;
    info.frontVer = frontVer;
    info.injectId = m_injectId;
    info.connId = m_connId;
    info.notifyUrl = m_notify_URL;
    info.pluginName = NDOPConfig::instance().pluginName(m_officeType);
    info.traceId = m_traceId;
    return info;
}

void NHelioCloudDocsPage::initDocsLocalResource()
{
    constexpr auto operation = "NHelioCloudDocsPage::initDocsLocalResource";
    NxWebViewContainer* container = m_browser ? m_browser->webViewContainer() : nullptr;
    if (!container || !m_proxyManager)
        return;
    if (!m_requestedFrontVer.isEmpty()) {
        ndocslog::info(QStringLiteral("requested front ver availabel"), operation);
        _updateProxy(m_requestedFrontVer);
        return;
    }
    ndocslog::info(QStringLiteral("requested front ver not availabel"), operation);
    _checkPreloadDocFramework(container);
    m_proxyManager->setProxy(proxyInfo());
}

void NHelioCloudDocsPage::_updateProxy(const QString& frontVer)
{
    constexpr auto operation = "NHelioCloudDocsPage::_updateProxy";
    NxWebViewContainer* container = m_browser ? m_browser->webViewContainer() : nullptr;
    if (!container)
        return;
    ndocslog::info(QStringLiteral("update proxy"), operation);
    _checkPreloadDocFramework(container);
    if (m_proxyManager->updateProxy(proxyInfo(frontVer))) {
        NDOPResourceManager::instance()->loadLocalResources(m_fileId, m_officeType, frontVer);
    } else {
        m_notify_URL = docsurl::withoutLocalPackageItems(m_notify_URL);
        ndocslog::info(QStringLiteral("params removed"), operation);
    }
    showUrl();
    ndocslog::info(QStringLiteral("load url %1").arg(m_notify_URL), operation);
    m_delayLoadFinished = true;
    ndocslog::info(QStringLiteral("set delay load finished"), operation);
}

bool NHelioCloudDocsPage::_isDelayLoadUrl() const
{
    constexpr auto operation = "NHelioCloudDocsPage::_isDelayLoadUrl";
    if (m_fileId.isEmpty()) {
        ndocslog::info(QStringLiteral("file id is empty"), operation);
        return false;
    }
    if (NDOPConfig::instance().isDopEnabled(m_officeType))
        return nconfigvalues::isDelayedLoadOn();
    ndocslog::info(QStringLiteral("switch off type %1").arg(m_officeType), operation);
    return false;
}

/** Whether the page's URL waits for an answer of the server. */
bool NHelioCloudDocsPage::isLoadHeldBack() const
{
    const bool delaying = m_delayLoadTimer && m_delayLoadTimer->isActive();
    return !m_notify_URL.isEmpty() && (m_waitingForVcs || delaying);
}

void NHelioCloudDocsPage::_delayLoadUrl()
{
    constexpr auto operation = "NHelioCloudDocsPage::_delayLoadUrl";
    if (m_delayLoadFinished) {
        ndocslog::info(QStringLiteral("delay load finished"), operation);
        return;
    }
    if (m_delayLoadTimer && m_delayLoadTimer->isActive()) {
        ndocslog::info(QStringLiteral("delay load started"), operation);
        return;
    }
    if (!m_requestedFrontVer.isEmpty() && m_browser && m_browser->webViewContainer()) {
        ndocslog::info(QStringLiteral("requested front ver %1").arg(m_requestedFrontVer), operation);
        _updateProxy(m_requestedFrontVer);
        return;
    }
    m_delayLoadTimer = std::make_unique<QTimer>();
    m_delayLoadTimer->setSingleShot(true);
    m_delayLoadTimer->setInterval(nconfigvalues::delayIntervalMs());
    connect(m_delayLoadTimer.get(), &QTimer::timeout, this, &NHelioCloudDocsPage::onDelayLoadUrl);
    m_delayLoadTimer->start();
    ndocslog::info(QStringLiteral("start delay load"), operation);
}

void NHelioCloudDocsPage::onDelayLoadUrl()
{
    constexpr auto operation = "NHelioCloudDocsPage::onDelayLoadUrl";
    if (m_delayLoadFinished) {
        ndocslog::info(QStringLiteral("url already loaded"), operation);
        return;
    }
    if (!m_browser) {
        ndocslog::info(QStringLiteral("browser null ptr"), operation);
        return;
    }
    if (m_delayLoadTimer) // it may be the timer that is calling
        m_delayLoadTimer.release()->deleteLater();
    ndocslog::info(QStringLiteral("desotry delay load timer"), operation);
    initDocsLocalResource();
    showUrl();
    ndocslog::info(QStringLiteral("load url %1").arg(m_notify_URL), operation);
    m_delayLoadFinished = true;
    ndocslog::info(QStringLiteral("set delay load finished"), operation);
}
