#include "page/NHelioCloudDocsPage.h"

#include "base/NDocsLog.h"
#include "base/NDomains.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "offline/NDOPResourceManager.h"
#include "page/NCefPreloadClient.h"
#include "page/OpenEvents.h"
#include "page/TakeOverScript.h"
#include "proxy/NCloudDocsRecordManager.h"
#include "proxy/NDOPConfig.h"
#include "zeolite/NxWebViewContainer.h"

using NDocsOfflinePage::NDOPConfig;
using NDocsOfflinePage::NDOPResourceManager;

// Browsers that were prepared in advance, and the front end that may already run in them.

bool NHelioCloudDocsPage::_checkPreloadDocFramework(NxWebViewContainer* container)
{
    constexpr auto operation = "NHelioCloudDocsPage::_checkPreloadDocFramework";
    if (!m_initByPreloadBrowser || !container || !NDOPConfig::instance().isDopEnabled(m_officeType)) {
        ndocslog::info(QStringLiteral("_checkPreloadDocFramework fail"), operation);
        return m_preloadFrameworkUsed;
    }
    if (m_preloadFrameworkChecked) {
        ndocslog::info(QStringLiteral("_checkPreloadDocFramework already check"), operation);
        return m_preloadFrameworkUsed;
    }
    m_preloadFrameworkChecked = true;

    const QString mismatch = preloadFrameworkMismatch(*container);
    if (!mismatch.isEmpty()) {
        container->clearLocalResourceCache();
        ndocslog::info(QStringLiteral("_checkPreloadDocFramework ") + mismatch, operation);
        return m_preloadFrameworkUsed;
    }
    ndocslog::info(QStringLiteral("_checkPreloadDocFramework success"), operation);
    m_preloadFrameworkUsed = true;
    _waitStartedPreRequest();
    return m_preloadFrameworkUsed;
}

/** Why the front end of the container cannot show the document; empty when it can. */
QString NHelioCloudDocsPage::preloadFrameworkMismatch(const NxWebViewContainer& container) const
{
    if (!container.property(ncefpreload::docFrameworkProperty).toBool())
        return QStringLiteral("PreloadDocFramework not enable");
    const QString domain = container.property(ncefpreload::domainProperty).toString();
    if (domain.compare(ndomains::url(QStringLiteral("quill")), Qt::CaseInsensitive) != 0)
        return QStringLiteral("preloadDomain not match");
    const QString officeType = container.property(ncefpreload::officeTypeProperty).toString();
    if (officeType.isEmpty() || officeType != m_officeType)
        return QStringLiteral("officetype not match");

    const QString current = container.property(ncefpreload::frontVerProperty).toString();
    const NCloudDocsRecordManager* records = NCloudDocsRecordManager::instance();
    const EnvConfigRecord record = records ? records->retrieveEnvConfigRecord(m_fileId) : EnvConfigRecord();
    const QString recorded = record.isUsable() ? record.frontVer : QString();
    if (current.isEmpty() || current.compare(recorded, Qt::CaseInsensitive) == 0)
        return {};
    return QStringLiteral("frontVer not match, record is %1, current is %2").arg(recorded, current);
}

void NHelioCloudDocsPage::_handlePreloadDocFrameworkWork()
{
    NxWebViewContainer* container = m_browser ? m_browser->webViewContainer() : nullptr;
    const auto resources = NDOPResourceManager::instance();
    if (!container || m_injectId.isEmpty() || !resources || m_preloadFrameworkWorkDone)
        return;
    m_preloadFrameworkWorkDone = true;
    openevents::post(QStringLiteral("docs_localproxy_dop_preloaddocframework"),
                     {{QStringLiteral("url"), m_notify_URL},
                      {QStringLiteral("officetype"), m_officeType},
                      {QStringLiteral("traceid"), m_traceId},
                      {QStringLiteral("reportver"), QStringLiteral("1.0")}});
    setUserAgent(container);
    const QVariant injectList = container->property(ncefpreload::injectArrayProperty);
    container->executeScript(
        takeoverscript::script(takeoverscript::relativeUrl(m_notify_URL),
                               resources->injectScriptFor(m_injectId, m_officeType, injectList)));
}

void NHelioCloudDocsPage::offerContainerBack()
{
    if (!m_initByPreloadBrowser || !m_browser || !mainWindow())
        return;
    NxWebViewContainer* container = m_browser->webViewContainer();
    if (!container)
        return;
    container->setWebViewParent(this);
    if (!NCefPreloadClient::instance().recoverContainer(NCefPreloadClient::containerName(), container))
        container->destroyLater();
}
