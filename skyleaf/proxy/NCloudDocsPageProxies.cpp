#include "proxy/NCloudDocsPageProxyManager.h"

#include "base/NDocsLog.h"
#include "base/NDomains.h"
#include "offline/NDOPResourceManager.h"
#include "offline/NRunData.h"

// What the decision installs in the browser, and how it is taken out again.

using NDocsOfflinePage::NDOPResourceManager;

void NCloudDocsPageProxyManager::addHtmlProxy()
{
    m_htmlProxy = {ndomains::origin(QStringLiteral("quill")), m_current.pluginPath, m_current.injectId};
    NDOPResourceManager::instance()->registerHtmlHandlers(m_htmlProxy.origin, m_htmlProxy.packagePath,
                                                          m_htmlProxy.injectId, m_browser);
    ndocslog::info(QStringLiteral("add html proxy %1").arg(m_htmlProxy.packagePath),
                   "NCloudDocsPageProxyManager::addHtmlProxy");
}

void NCloudDocsPageProxyManager::removeHtmlProxy()
{
    NDOPResourceManager::instance()->unregisterHtmlHandlers(m_htmlProxy.origin, m_htmlProxy.packagePath,
                                                            m_browser);
    ndocslog::info(QStringLiteral("remove html proxy %1").arg(m_htmlProxy.packagePath),
                   "NCloudDocsPageProxyManager::removeHtmlProxy");
    m_htmlProxy = {};
}

void NCloudDocsPageProxyManager::addLocalResourceProxy()
{
    m_localResourceProxy = {ndomains::origin(QStringLiteral("quill")), m_current.pluginPath};
    NDOPResourceManager::instance()->registerScriptHandlers(m_localResourceProxy.origin,
                                                            m_localResourceProxy.packagePath, m_browser);
    ndocslog::info(QStringLiteral("add local resource proxy %1 ").arg(m_localResourceProxy.packagePath),
                   "NCloudDocsPageProxyManager::addLocalResourceProxy");
}

void NCloudDocsPageProxyManager::removeLocalResourceProxy()
{
    NDOPResourceManager::instance()->unregisterScriptHandlers(m_localResourceProxy.origin,
                                                              m_localResourceProxy.packagePath, m_browser);
    ndocslog::info(QStringLiteral("remove local resource proxy %1 ").arg(m_localResourceProxy.packagePath),
                   "NCloudDocsPageProxyManager::removeLocalResourceProxy");
    m_localResourceProxy = {};
}

void NCloudDocsPageProxyManager::addRequestProxy(const QString& replyName)
{
    NDOPResourceManager::instance()->registerRequestHandler(replyName, m_current.fileId, m_current.officeType,
                                                            m_current.connId, m_browser);
    ndocslog::info(QStringLiteral("add %1 proxy").arg(replyName),
                   "NCloudDocsPageProxyManager::addRequestProxy");
}

void NCloudDocsPageProxyManager::removeRequestProxy(const QString& replyName)
{
    const auto resources = NDOPResourceManager::instance();
    resources->unregisterRequestHandler(replyName, m_current.fileId, m_current.officeType, m_browser);
    resources->clearRequest(replyName, m_current.fileId, m_current.officeType, m_current.connId);
    ndocslog::info(QStringLiteral("remove %1 proxy").arg(replyName),
                   "NCloudDocsPageProxyManager::removeRequestProxy");
}

void NCloudDocsPageProxyManager::addRequestProxies()
{
    for (const QString& replyName : NDocsOfflinePage::prefetchedReplies())
        addRequestProxy(replyName);
}

void NCloudDocsPageProxyManager::removeRequestProxies()
{
    for (const QString& replyName : NDocsOfflinePage::prefetchedReplies())
        removeRequestProxy(replyName);
}

void NCloudDocsPageProxyManager::removeProxies()
{
    if (!m_htmlProxy.packagePath.isEmpty())
        removeHtmlProxy();
    if (!m_localResourceProxy.packagePath.isEmpty())
        removeLocalResourceProxy();
    if (!m_current.fileId.isEmpty())
        removeRequestProxies();
    m_current = {};
}
