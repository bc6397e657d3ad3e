#include "page/NHelioCloudDocsPage.h"

#include "base/NDocsLog.h"
#include "bridge/NHelioCloudDocsAsynJsObj.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "page/NCefPreloadClient.h"
#include "zeolite/NxWebViewContainer.h"

// Browsers that were prepared in advance, and the front end that may already run in them.

bool NHelioCloudDocsPage::_checkPreloadDocFramework(NxWebViewContainer* container)
{
    Q_UNUSED(container)
    // No browser is prepared in advance, so no front end runs in it.
    ndocslog::info(QStringLiteral("_checkPreloadDocFramework fail"),
                   "NHelioCloudDocsPage::_checkPreloadDocFramework");
    return m_preloadFrameworkUsed;
}

void NHelioCloudDocsPage::_handlePreloadDocFrameworkWork()
{
    m_preloadFrameworkWorkDone = true;
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
