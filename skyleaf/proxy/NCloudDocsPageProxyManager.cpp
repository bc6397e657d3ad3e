#include "proxy/NCloudDocsPageProxyManager.h"

#include "base/NDocsLog.h"
#include "proxy/NDOPConfig.h"

void NCloudDocsPageProxyManager::setProxy(const NDOPProxyInfo& info)
{
    constexpr auto operation = "NCloudDocsPageProxyManager::setProxy";
    m_requested = info;
    if (!isBrowserReady()) {
        ndocslog::info(QStringLiteral("webview not ready"), operation);
        return;
    }
    ndocslog::info(QStringLiteral("initDocsLocalResource start URL:%1").arg(info.notifyUrl), operation);
    if (!NDocsOfflinePage::NDOPConfig::instance().isDopEnabled(info.officeType)) {
        ndocslog::info(QStringLiteral("isInjectHanlderInfoChanged officeType: %1, connectionId: %2")
                           .arg(info.officeType, info.connId),
                       operation);
    }
}

bool NCloudDocsPageProxyManager::updateProxy(const NDOPProxyInfo& info)
{
    constexpr auto operation = "NCloudDocsPageProxyManager::updateProxy";
    m_requested = info;
    if (!isBrowserReady()) {
        ndocslog::info(QStringLiteral("webview not ready"), operation);
        return false;
    }
    if (info.fileId.isEmpty()) {
        ndocslog::info(QStringLiteral("file id is empty"), operation);
        return false;
    }
    if (info.frontVer.isEmpty()) {
        ndocslog::info(QStringLiteral("front ver is empty"), operation);
        return false;
    }
    if (!NDocsOfflinePage::NDOPConfig::instance().isDopEnabled(info.officeType))
        ndocslog::info(QStringLiteral("funcSwitch off"), operation);
    return false;
}

void NCloudDocsPageProxyManager::removeProxies()
{
    m_requested = {};
}

bool NCloudDocsPageProxyManager::isBrowserReady() const
{
    return m_browser && m_browser->webViewContainer();
}
