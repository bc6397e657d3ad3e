#include "offline/NDOPResourceManager.h"

#include "base/NDocsLog.h"
#include "base/NDomains.h"
#include "base/NReadOnce.h"
#include "offline/DeleteOnOwnThread.h"
#include "offline/NDOPLocalResourceDataPreloader.h"
#include "offline/ResourceRequests.h"
#include "proxy/NCloudDocsRecordManager.h"
#include "proxy/NConfigCentreValues.h"
#include "proxy/NDOPConfig.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NFpccomb.h"
#include "zeolite/NThreadPool.h"

#include <QDir>
#include <QUrl>
#include <QUrlQuery>

#include <limits>

namespace NDocsOfflinePage {
namespace {

constexpr int addOnGroup = 60;

QVariantMap bodyAnswer(const QByteArray& body)
{
    return nresourcerequests::answer({body, {}});
}

} // namespace

std::shared_ptr<NDOPResourceManager> NDOPResourceManager::instance()
{
    static NReadOnce<std::shared_ptr<NDOPResourceManager>> manager(
        [] { return std::shared_ptr<NDOPResourceManager>(new NDOPResourceManager, DeleteOnOwnThread()); });
    return manager();
}

NDOPResourceManager::NDOPResourceManager()
    : m_preloader(new NDOPLocalResourceDataPreloader, DeleteOnOwnThread())
{
    using Callback = std::shared_ptr<IWebViewResourceProviderCallback>;
    qRegisterMetaType<Callback>("std::shared_ptr<IWebViewResourceProviderCallback>");
    qRegisterMetaType<Callback>("const shared_ptr<IWebViewResourceProviderCallback>&");
    connect(m_preloader.get(), &NDOPLocalResourceDataPreloader::preloadedDataClean, this,
            &NDOPResourceManager::onPreloadedDataClean);
    refreshPreloading();
    NCoreApplication* core = NCoreApplication::instance();
    NFpccomb* centre = core ? core->getFpccomb() : nullptr;
    if (centre && !centre->hasInitFinished(addOnGroup))
        centre->addInitFinishedWatch(addOnGroup, this, [this](qint64, qint64) { refreshPreloading(); });
}

NDOPResourceManager::~NDOPResourceManager()
{
    m_preloader->stop();
}

/** The configuration belongs to this thread; what browser threads need of it is read in advance. */
void NDOPResourceManager::refreshPreloading()
{
    m_isPreloadingOn = nconfigvalues::isPreloadingOn();
    NDOPConfig::instance();
    isOfflineEditMasterSwitchOn();
}

// Packages.

bool NDOPResourceManager::mayPreload()
{
    refreshPreloading();
    if (!isPreloadingOn())
        ndocslog::info(QStringLiteral("preloading is not enabled"),
                       "NDocsOfflinePage::NDOPResourceManager::loadLocalResources");
    return isPreloadingOn();
}

void NDOPResourceManager::loadLocalResources(const QString& fileId, const QString& officeType,
                                             const QString& frontVer)
{
    const NCloudDocsRecordManager* records = NCloudDocsRecordManager::instance();
    if (mayPreload() && !fileId.isEmpty() && !frontVer.isEmpty() && records)
        preload(records->retrievePluginPathRecord(officeType, frontVer), officeType);
}

void NDOPResourceManager::loadLocalResources(const QString& fileId, const QString& officeType)
{
    const NCloudDocsRecordManager* records = NCloudDocsRecordManager::instance();
    if (!mayPreload() || fileId.isEmpty() || officeType.isEmpty() || !records)
        return;
    const EnvConfigRecord record = records->retrieveEnvConfigRecord(fileId);
    if (record.isUsable())
        preload(records->retrievePluginPathRecord(officeType, record.frontVer), officeType);
}

void NDOPResourceManager::preload(const QString& packageRoot, const QString& officeType)
{
    if (packageRoot.isEmpty())
        return;
    if (m_loadedPackages.contains(packageRoot)) {
        ndocslog::info(QStringLiteral("plugin %1 already loaded").arg(packageRoot),
                       "NDocsOfflinePage::NDOPResourceManager::loadLocalResources");
        return;
    }
    m_loadedPackages.insert(packageRoot);
    if (NThreadPool* pool = NThreadPool::globalInstance()) {
        pool->submit(std::make_unique<NTask>([preloader = m_preloader, packageRoot, officeType] {
            preloader->readLocalResource(packageRoot, officeType);
        }));
    }
}

void NDOPResourceManager::onPreloadedDataClean()
{
    m_loadedPackages.clear();
    ndocslog::info(QStringLiteral("preload record cleaned"),
                   "NDocsOfflinePage::NDOPResourceManager::onPreloadedDataClean");
}

QByteArray NDOPResourceManager::readPreloadedOrDisk(const QString& directory, const QString& path,
                                                    qint64 largest) const
{
    QByteArray bytes = m_preloader->fileData(path);
    if (!bytes.isEmpty())
        return bytes;
    bytes = npackagefiles::readWithin(directory, path, largest).value_or(QByteArray());
    if (!bytes.isEmpty())
        m_preloader->storeFile(path, bytes);
    return bytes;
}

QByteArray NDOPResourceManager::readCached(const QString& packageRoot, const QString& path)
{
    const QString key = QDir::toNativeSeparators(path);
    const auto cached = m_fileCache.constFind(key);
    if (cached != m_fileCache.constEnd())
        return *cached;
    const auto bytes = npackagefiles::readWithin(packageRoot, path, npackagefiles::largestPage);
    return bytes ? *m_fileCache.insert(key, *bytes) : QByteArray();
}

// Pages and scripts.

template <typename ReadHtml>
void NDOPResourceManager::answerHtml(const QString& packageRoot, const QString& injectId,
                                     IWebViewResourceProviderCallback& callback, const char* operation,
                                     ReadHtml readHtml)
{
    QByteArray body;
    const QString url = packageRoot.isEmpty() || injectId.isEmpty() ? QString() : callback.requestUrl();
    if (!url.isEmpty()) {
        ndocslog::info(QStringLiteral("url proxy: %1").arg(url), operation);
        const QString officeType = QUrlQuery(QUrl(url)).queryItemValue(QStringLiteral("officeType"));
        if (!officeType.isEmpty()) {
            body = readHtml(nresourcerequests::pageFile(packageRoot, officeType));
            if (!body.isEmpty())
                body = injected(body, packageRoot, injectId, officeType);
            ndocslog::info(QStringLiteral("html proxy data found"), operation);
        }
    }
    callback.complete(bodyAnswer(body));
}

void NDOPResourceManager::readDOPHtmlData(const QString& packageRoot, const QString& injectId,
                                          const std::shared_ptr<IWebViewResourceProviderCallback>& callback)
{
    if (!callback)
        return;
    answerHtml(packageRoot, injectId, *callback, "NDocsOfflinePage::NDOPResourceManager::readDOPHtmlData",
               [this, &packageRoot](const QString& path) { return readCached(packageRoot, path); });
}

void NDOPResourceManager::readDOPPreloadedHtmlData(
    const QString& packageRoot, const QString& injectId,
    const std::shared_ptr<IWebViewResourceProviderCallback>& callback)
{
    if (!callback)
        return;
    answerHtml(packageRoot, injectId, *callback,
               "NDocsOfflinePage::NDOPResourceManager::readDOPPreloadedHtmlData",
               [this, &packageRoot](const QString& path) {
                   return readPreloadedOrDisk(packageRoot, path, npackagefiles::largestPage);
               });
}

void NDOPResourceManager::readDOPPreloadedJsData(
    const QString& urlPrefix, const QString& localPrefix,
    const std::shared_ptr<IWebViewResourceProviderCallback>& callback)
{
    const QString url = callback ? callback->requestUrl() : QString();
    if (url.isEmpty())
        return;
    QByteArray body;
    if (!npackagefiles::hasParentStep(url)) {
        QString path = url;
        body = readPreloadedOrDisk(localPrefix, path.replace(urlPrefix, localPrefix));
    }
    callback->complete(bodyAnswer(body));
}

// Replies of the documents server.

void NDOPResourceManager::readResponseData(const QString& requestKey, unsigned timeoutMs,
                                           const std::shared_ptr<IWebViewResourceProviderCallback>& callback)
{
    if (!callback)
        return;
    const auto response = m_responses.constFind(requestKey);
    if (requestKey.isEmpty() || response != m_responses.constEnd()) {
        callback->complete(nresourcerequests::answer(requestKey.isEmpty() ? NDOPResponseData() : *response));
        return;
    }
    if (m_waiting.contains(requestKey))
        setResponse(requestKey, {});
    m_waiting.insert(requestKey, callback);
    auto* timer = new QTimer(this);
    timer->setSingleShot(true);
    timer->setInterval(int(qMin(timeoutMs, unsigned(std::numeric_limits<int>::max()))));
    timer->setProperty("url", requestKey);
    connect(timer, &QTimer::timeout, this, &NDOPResourceManager::onResponseDataTimeout);
    m_timers.insert(requestKey, timer);
    timer->start();
}

QString NDOPResourceManager::urlOf(const QString& kind, const QString& fileId, const QString& officeType)
{
    if (fileId.isEmpty() || officeType.isEmpty())
        return {};
    return nresourcerequests::requestKey(ndomains::origin(QStringLiteral("quill_api")), kind, fileId,
                                         NDOPConfig::instance().packageName(officeType));
}

QString NDOPResourceManager::keyOf(const QString& kind, const QString& fileId, const QString& officeType,
                                   const QString& connId)
{
    const QString url = urlOf(kind, fileId, officeType);
    return url.isEmpty() || connId.isEmpty() ? QString() : connId + QLatin1Char(' ') + url;
}

void NDOPResourceManager::setResponseData(const QString& kind, const QString& fileId,
                                          const QString& officeType, const QString& connId,
                                          const NDOPResponseData& data)
{
    const QString requestKey = keyOf(kind, fileId, officeType, connId);
    if (!requestKey.isEmpty())
        setResponse(requestKey, data);
}

std::optional<NDOPResponseData> NDOPResourceManager::responseData(const QString& kind, const QString& fileId,
                                                                  const QString& officeType,
                                                                  const QString& connId) const
{
    const auto found = m_responses.constFind(keyOf(kind, fileId, officeType, connId));
    return found == m_responses.constEnd() ? std::nullopt : std::make_optional(*found);
}

void NDOPResourceManager::setResponse(const QString& requestKey, const NDOPResponseData& data)
{
    m_responses.insert(requestKey, data);
    const std::shared_ptr<IWebViewResourceProviderCallback> callback = m_waiting.take(requestKey);
    if (!callback)
        return;
    callback->complete(nresourcerequests::answer(data));
    dropTimer(requestKey);
}

void NDOPResourceManager::dropTimer(const QString& requestKey)
{
    if (const QPointer<QTimer> timer = m_timers.take(requestKey)) {
        timer->stop();
        timer->deleteLater();
    }
}

void NDOPResourceManager::onResponseDataTimeout()
{
    auto* timer = qobject_cast<QTimer*>(sender());
    if (!timer)
        return;
    const QString requestKey = timer->property("url").toString();
    if (requestKey.isEmpty())
        timer->deleteLater();
    else
        setResponse(requestKey, {});
}

void NDOPResourceManager::clearRequest(const QString& kind, const QString& fileId, const QString& officeType,
                                       const QString& connId)
{
    const QString requestKey = keyOf(kind, fileId, officeType, connId);
    if (requestKey.isEmpty())
        return;
    m_responses.remove(requestKey);
    m_waiting.remove(requestKey);
    dropTimer(requestKey);
}

NDOPResourceManager::Counts NDOPResourceManager::counts() const
{
    const std::lock_guard<std::mutex> lock(m_lock);
    return {m_injectRecords.size(), m_responses.size(), m_waiting.size()};
}

// Injection.

template <typename Change>
void NDOPResourceManager::changeInjectRecord(const QString& injectId, Change change)
{
    const std::lock_guard<std::mutex> lock(m_lock);
    const auto record = m_injectRecords.find(injectId);
    if (record != m_injectRecords.end())
        change(*record);
}

QByteArray NDOPResourceManager::injected(const QByteArray& html, const QString& packageRoot,
                                         const QString& injectId, const QString& officeType)
{
    std::optional<NDOPInjectHtml> record = injectRecord(injectId);
    if (!record)
        return html;
    // Reads files: nobody else waits for them at the lock.
    QByteArray page = record->injectHtml(html, officeType, packageRoot);
    changeInjectRecord(injectId, [&page](NDOPInjectHtml& kept) { page = kept.keepPage(page); });
    return page;
}

std::optional<NDOPInjectHtml> NDOPResourceManager::injectRecord(const QString& injectId) const
{
    const std::lock_guard<std::mutex> lock(m_lock);
    const auto found = m_injectRecords.constFind(injectId);
    return found == m_injectRecords.constEnd() ? std::nullopt : std::optional(*found);
}

void NDOPResourceManager::createInjectRecord(const QString& injectId)
{
    const std::lock_guard<std::mutex> lock(m_lock);
    m_injectRecords.insert(injectId, {});
}

void NDOPResourceManager::removeInjectRecord(const QString& injectId)
{
    const std::lock_guard<std::mutex> lock(m_lock);
    m_injectRecords.remove(injectId);
}

void NDOPResourceManager::setInjectConnId(const QString& injectId, const QString& connId)
{
    changeInjectRecord(injectId, [&](NDOPInjectHtml& record) { record.setConnId(connId); });
}

void NDOPResourceManager::setInjectUrl(const QString& injectId, const QString& url)
{
    changeInjectRecord(injectId, [&](NDOPInjectHtml& record) { record.setUrl(url); });
}

void NDOPResourceManager::setInjectFileInfo(const QString& injectId, const QByteArray& fileInfo)
{
    changeInjectRecord(injectId, [&](NDOPInjectHtml& record) { record.setFileInfo(fileInfo); });
}

void NDOPResourceManager::setInjectPackagePaths(const QString& injectId, const QString& syncPath,
                                                const QString& cachePath)
{
    changeInjectRecord(injectId,
                       [&](NDOPInjectHtml& record) { record.setPackagePaths(syncPath, cachePath); });
}

void NDOPResourceManager::copyInjectLocalData(const QString& fromInjectId, const QString& toInjectId)
{
    const std::lock_guard<std::mutex> lock(m_lock);
    const auto from = m_injectRecords.constFind(fromInjectId);
    const auto to = m_injectRecords.find(toInjectId);
    if (from != m_injectRecords.constEnd() && to != m_injectRecords.end())
        to->copyLocalData(*from);
}

bool NDOPResourceManager::isPageOfRecord(const QString& injectId, const QString& requestUrl) const
{
    const std::lock_guard<std::mutex> lock(m_lock);
    const auto record = m_injectRecords.constFind(injectId);
    return record == m_injectRecords.constEnd() || record->url().isEmpty() ||
           nresourcerequests::isSameDocument(QUrl(record->url()), QUrl(requestUrl));
}

QString NDOPResourceManager::injectScriptFor(const QString& injectId, const QString& officeType,
                                             const QVariant& list) const
{
    const std::optional<NDOPInjectHtml> record = injectRecord(injectId);
    return record ? record->buildInjectScript(officeType, list) : QString();
}

} // namespace NDocsOfflinePage
