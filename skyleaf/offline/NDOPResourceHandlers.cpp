#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "offline/NDOPResourceManager.h"

#include "base/NDomains.h"
#include "offline/ResourceRequests.h"
#include "proxy/NDOPConfig.h"

// What the manager registers with a browser. The handlers run on browser threads: they know the manager
// weakly and only read what they are bound to.

namespace NDocsOfflinePage {
namespace {

using Callback = std::shared_ptr<IWebViewResourceProviderCallback>;
using WeakManager = std::weak_ptr<NDOPResourceManager>;

bool handleHtml(const WeakManager& weakManager, const QString& packageRoot, const QString& injectId,
                const Callback& callback)
{
    const std::shared_ptr<NDOPResourceManager> manager = weakManager.lock();
    if (packageRoot.isEmpty() || injectId.isEmpty() || !callback || !manager)
        return false;
    // Another document below the same prefix is the server's.
    if (!manager->isPageOfRecord(injectId, callback->requestUrl()))
        return false;
    if (manager->isPreloadingOn()) {
        manager->readDOPPreloadedHtmlData(packageRoot, injectId, callback);
        return true;
    }
    return QMetaObject::invokeMethod(manager.get(), "readDOPHtmlData", Q_ARG(QString, packageRoot),
                                     Q_ARG(QString, injectId),
                                     Q_ARG(std::shared_ptr<IWebViewResourceProviderCallback>, callback));
}

bool handleScript(const WeakManager& weakManager, const QString& urlPrefix, const QString& localPrefix,
                  const Callback& callback)
{
    const std::shared_ptr<NDOPResourceManager> manager = weakManager.lock();
    if (urlPrefix.isEmpty() || localPrefix.isEmpty() || !callback || !manager)
        return false;
    manager->readDOPPreloadedJsData(urlPrefix, localPrefix, callback);
    return true;
}

bool handleReply(const WeakManager& weakManager, const QString& requestKey, const QString& kind,
                 const QString& connId, const Callback& callback)
{
    const std::shared_ptr<NDOPResourceManager> manager = weakManager.lock();
    const QString url = callback ? callback->requestUrl() : QString();
    if (connId.isEmpty() || url.isEmpty() || !manager)
        return false;
    const auto request = nresourcerequests::parseReplyRequest(url, kind, connId);
    return request &&
           QMetaObject::invokeMethod(manager.get(), "readResponseData", Q_ARG(QString, requestKey),
                                     Q_ARG(uint, request->timeoutMs),
                                     Q_ARG(std::shared_ptr<IWebViewResourceProviderCallback>, callback));
}

} // namespace

void NDOPResourceManager::registerHtmlHandlers(const QString& origin, const QString& packageRoot,
                                               const QString& injectId, NHelioBrowserWidgetBase* browser)
{
    if (!browser || origin.isEmpty() || packageRoot.isEmpty() || injectId.isEmpty())
        return;
    refreshPreloading();
    const auto handler = [manager = weak_from_this(), packageRoot, injectId](const Callback& callback) {
        return handleHtml(manager, packageRoot, injectId, callback);
    };
    QVector<NHelioResourceCacheEntry> entries;
    const QStringList prefixes = nresourcerequests::pagePrefixes(origin);
    for (const QString& prefix : prefixes)
        entries.append({prefix, handler});
    browser->addLocalResourceCache(entries);
}

void NDOPResourceManager::unregisterHtmlHandlers(const QString& origin, const QString& packageRoot,
                                                 NHelioBrowserWidgetBase* browser)
{
    if (!browser)
        return;
    QVector<NHelioLocalPathPair> pairs;
    const QStringList prefixes = nresourcerequests::pagePrefixes(origin);
    for (const QString& prefix : prefixes)
        pairs.append({prefix, packageRoot});
    browser->removeLocalResourceCache(pairs);
}

void NDOPResourceManager::registerScriptHandlers(const QString& origin, const QString& packageRoot,
                                                 NHelioBrowserWidgetBase* browser)
{
    constexpr int packageProvider = 1;
    if (!browser || origin.isEmpty() || packageRoot.isEmpty())
        return;
    refreshPreloading();
    const NHelioLocalPathPair pair{nresourcerequests::scriptUrlPrefix(origin),
                                   nresourcerequests::scriptLocalPrefix(packageRoot)};
    browser->addLocalFaviconCache({pair});
    if (!isPreloadingOn()) {
        browser->setLocalResourceCache({pair}, packageProvider);
        return;
    }
    browser->addLocalResourceCache(
        {{pair.first, [manager = weak_from_this(), pair](const Callback& callback) {
              return handleScript(manager, pair.first, pair.second, callback);
          }}});
}

void NDOPResourceManager::unregisterScriptHandlers(const QString& origin, const QString& packageRoot,
                                                   NHelioBrowserWidgetBase* browser)
{
    if (!browser)
        return;
    const NHelioLocalPathPair pair{nresourcerequests::scriptUrlPrefix(origin),
                                   nresourcerequests::scriptLocalPrefix(packageRoot)};
    browser->removeLocalResourceCache({pair});
    browser->removeLocalFaviconCache({pair});
}

void NDOPResourceManager::registerRequestHandler(const QString& kind, const QString& fileId,
                                                 const QString& officeType, const QString& connId,
                                                 NHelioBrowserWidgetBase* browser)
{
    if (!browser || kind.isEmpty())
        return;
    const QString requestKey = keyOf(kind, fileId, officeType, connId);
    if (requestKey.isEmpty())
        return;
    browser->addLocalResourceCache(
        {{urlOf(kind, fileId, officeType),
          [manager = weak_from_this(), requestKey, kind, connId](const Callback& callback) {
              return handleReply(manager, requestKey, kind, connId, callback);
          }}});
}

void NDOPResourceManager::unregisterRequestHandler(const QString& kind, const QString& fileId,
                                                   const QString& officeType,
                                                   NHelioBrowserWidgetBase* browser)
{
    const QString url = urlOf(kind, fileId, officeType);
    if (browser && !url.isEmpty())
        browser->removeLocalResourceCache({{url, QString()}});
}

} // namespace NDocsOfflinePage
