#include "page/NHelioCloudDocsPage.h"

#include "base/NDocsLog.h"
#include "bridge/NHelioCloudDocsAsynJsObj.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "page/DocsUrl.h"
#include "page/OpenEvents.h"
#include "proxy/NConfigCentreValues.h"
#include "proxy/NDOPConfig.h"

// Which version of the front end shows the document, and holding the load back until that is known. Without
// local packages there is one version, the server's: no run of requests starts, and only the delayed load
// holds back.

void NHelioCloudDocsPage::_startNetworkRequest()
{
    constexpr auto operation = "NHelioCloudDocsPage::_startNetworkRequest";
    ndocslog::info(QStringLiteral("request data lifetime: %1").arg(nconfigvalues::responseDataLifetimeMs()),
                   operation);
    if (m_networkRequestStarted) {
        ndocslog::info(QStringLiteral("already request"), operation);
        return;
    }
    const QUrl url(m_notify_URL);
    if (url.path().startsWith(QLatin1String("/office/new/"))) {
        ndocslog::info(QStringLiteral("/office/new/ no need to request"), operation);
        return;
    }
    m_fileId = docsurl::lastSegmentOf(url);
    if (m_fileId.isEmpty())
        ndocslog::info(QStringLiteral("empty file id"), operation);
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
    if (m_browser) {
        normalizeUrl(m_notify_URL);
        initDocsLocalResource();
        showUrl();
    }
    openevents::post(QStringLiteral("docs_cloud_vcsrequesttimeout"),
                     {{QStringLiteral("notifyUrl"), m_notify_URL}, {QStringLiteral("fileId"), m_fileId}});
}

void NHelioCloudDocsPage::onRequestTaskFinished(const NCloudDocsRequestTaskResult& result)
{
    if (result.fileId != m_fileId)
        return;
    m_replyTimer.restart();
    if (result.replyName.isEmpty())
        return;
    m_requestResults.insert(result.replyName, {result.data, result.startTime, result.endTime});
    if (m_jsObj)
        m_jsObj->forwardPreloadRequest(result.replyName, result.data, result.startTime, result.endTime);
}

void NHelioCloudDocsPage::initDocsLocalResource()
{
    NxWebViewContainer* container = m_browser ? m_browser->webViewContainer() : nullptr;
    if (!container || !m_proxyManager)
        return;
    ndocslog::info(QStringLiteral("requested front ver not availabel"),
                   "NHelioCloudDocsPage::initDocsLocalResource");
    _checkPreloadDocFramework(container);

    NDOPProxyInfo info;
    info.fileId = m_fileId;
    info.officeType = m_officeType;
    info.injectId = m_injectId;
    info.connId = m_connId;
    info.notifyUrl = m_notify_URL;
    info.pluginName = NDocsOfflinePage::NDOPConfig::instance().pluginName(m_officeType);
    info.traceId = m_traceId;
    m_proxyManager->setProxy(info);
}

bool NHelioCloudDocsPage::_isDelayLoadUrl() const
{
    constexpr auto operation = "NHelioCloudDocsPage::_isDelayLoadUrl";
    if (m_fileId.isEmpty()) {
        ndocslog::info(QStringLiteral("file id is empty"), operation);
        return false;
    }
    if (NDocsOfflinePage::NDOPConfig::instance().isDopEnabled(m_officeType))
        return nconfigvalues::isDelayedLoadOn();
    ndocslog::info(QStringLiteral("switch off type %1").arg(m_officeType), operation);
    return false;
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
    m_delayLoadTimer.release()->deleteLater();
    ndocslog::info(QStringLiteral("desotry delay load timer"), operation);
    initDocsLocalResource();
    showUrl();
    ndocslog::info(QStringLiteral("load url %1").arg(m_notify_URL), operation);
    m_delayLoadFinished = true;
    ndocslog::info(QStringLiteral("set delay load finished"), operation);
}
