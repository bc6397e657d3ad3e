#include "page/NDocumentLoad.h"

#include "base/NDocsLog.h"
#include "base/NDomains.h"
#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "offline/NDOPResourceManager.h"
#include "offline/ResourceRequests.h"
#include "page/DocsUrl.h"
#include "page/NTakeOver.h"
#include "proxy/NConfigCentreValues.h"
#include "proxy/NDOPConfig.h"
#include "proxy/NVersionCheckCache.h"
#include "zeolite/NxWebViewContainer.h"

#include <QUrl>

using NDocsOfflinePage::NDOPConfig;
using NDocsOfflinePage::NDOPResourceManager;

// What a load is, and when its URL goes to the browser. Its requests are in NDocumentLoadRequests.cpp, what
// the answers change in NDocumentLoadAnswers.cpp.

namespace {

bool isDarkSkin()
{
    const NHelioApplication* application = NHelioApplication::instance();
    const NHelioSkin* skin = application ? application->helioSkin() : nullptr;
    return skin && skin->isDark();
}

docsurl::Normalized normalized(const QString& url, const QString& officeType, const QString& traceId,
                               const IDocumentLoadHost& host)
{
    const auto& config = NDOPConfig::instance();
    docsurl::NormalizeContext context;
    context.officeType = officeType;
    context.traceId = traceId;
    context.fileNameSuffix = host.fileNameSuffix();
    context.suffix = host.pageSuffix();
    context.darkSkin = isDarkSkin();
    context.officeTypeOfSuffix = [&config](const QString& suffix) { return config.officeTypeCode(suffix); };
    context.recordedOfficeType = &nversioncheckcache::get;
    context.isClientProxy = [&config](const QString& type) { return config.isDopEnabled(type); };
    context.makeTraceId = &docsurl::newIdentifier;
    return docsurl::normalize(url, context);
}

} // namespace

NDocumentLoad::NDocumentLoad(IDocumentLoadHost& host, LoadReason reason, QObject* page)
    : QObject(page)
    , m_host(host)
    , m_reason(reason)
{
    m_versionTimer.setSingleShot(true);
    connect(&m_versionTimer, &QTimer::timeout, this, &NDocumentLoad::onVcsResponseTimeout);
    m_delayTimer.setSingleShot(true);
    connect(&m_delayTimer, &QTimer::timeout, this, &NDocumentLoad::onDelayLoadUrl);
}

NDocumentLoad::~NDocumentLoad()
{
    end();
}

void NDocumentLoad::end()
{
    if (m_state == LoadState::Ended)
        return;
    advance(LoadEvent::End);
    drop();
}

void NDocumentLoad::rest()
{
    if (!advance(LoadEvent::Rest))
        return;
    drop();
    m_isLoadFinished = false;
}

void NDocumentLoad::drop()
{
    m_versionTimer.stop();
    m_delayTimer.stop();
    m_waitsForView = false;
    m_host.loadProxies().removeProxies();
    if (m_task) {
        m_isVersionChecked = m_isVersionChecked || m_task->hasAskedVersion();
        m_task->abandon();
        m_task->disconnect(this);
        m_task.release()->deleteLater(); // it may be the one that calls
    }
    m_run.reset();
}

bool NDocumentLoad::advance(LoadEvent event)
{
    const std::optional<LoadState> next = nextState(m_state, event);
    if (next)
        m_state = *next;
    return next.has_value();
}

bool NDocumentLoad::isHeldBack() const
{
    return !m_url.isEmpty() && (m_state == LoadState::CheckingVersion || m_state == LoadState::Delaying);
}

NxWebViewContainer* NDocumentLoad::container() const
{
    const NHelioBrowserWidgetBase* browser = m_host.loadBrowser();
    return browser ? browser->webViewContainer() : nullptr;
}

void NDocumentLoad::setOfficeType(const QString& officeType)
{
    if (m_officeType == officeType)
        return;
    m_officeType = officeType;
    Q_EMIT officeTypeChanged(officeType);
}

// What it is for.

bool NDocumentLoad::takes(const QString& url) const
{
    if (m_state == LoadState::Resting || m_state == LoadState::Ended)
        return false;
    if (m_url.isEmpty() || normalized(url, m_officeType, m_traceId, m_host).url == m_url)
        return true;
    return !isShown() && !m_fileId.isEmpty() && docsurl::fileIdOf(QUrl(url)) == m_fileId;
}

void NDocumentLoad::take(const QString& url)
{
    const docsurl::Normalized result = normalized(url, m_officeType, m_traceId, m_host);
    setOfficeType(result.officeType);
    m_traceId = result.traceId;
    m_url = result.url;

    if (m_officeType.isEmpty()) {
        _startVcsRequest();
    } else if (result.clientProxy) {
        if (m_isRunStarted)
            m_url = docsurl::withQueryItem(m_url, QStringLiteral("sdkversion"), QStringLiteral("3.0.7"));
        _startNetworkRequest();
        _waitStartedPreRequest();
    }
}

void NDocumentLoad::takeAhead(const QString& url, const QString& fileId, const QString& officeType)
{
    setOfficeType(officeType);
    if (!m_isRunStarted) {
        m_url = url;
        ndocslog::info(QStringLiteral("m_notify_URL: %1").arg(m_url), "NHelioCloudDocsPage::_preInit");
    }
    if (NDOPConfig::instance().isDopEnabled(officeType))
        _startNetworkRequest();
    m_fileId = fileId;
}

void NDocumentLoad::adopt(const QString& url, const NDocumentLoad& earlier)
{
    const QUrl address(url);
    m_url = url;
    m_reloadUrl = url;
    m_fileId = docsurl::fileIdOf(address);
    QString officeType = docsurl::queryValue(address, QStringLiteral("officeType"));
    if (officeType.isEmpty() && !m_fileId.isEmpty())
        officeType = nversioncheckcache::get(m_fileId);
    setOfficeType(officeType);
    // A page may change its address without loading anything.
    m_isLoadFinished = earlier.m_isLoadFinished;
    m_webFileInfo = earlier.m_webFileInfo;
    m_hasArrived = true;
    advance(LoadEvent::Show);
}

/** What the server has said of the document is not asked again. */
void NDocumentLoad::goOnWhere(const NDocumentLoad& earlier)
{
    setOfficeType(earlier.m_officeType);
    m_requestedFrontVer = earlier.m_requestedFrontVer;
    m_isVersionChecked = earlier.m_isVersionChecked || (earlier.m_task && earlier.m_task->hasAskedVersion());
}

void NDocumentLoad::repeat(const NDocumentLoad& earlier)
{
    m_url = earlier.m_url;
    m_fileId = earlier.m_fileId;
    m_traceId = earlier.m_traceId;
    m_reloadUrl = earlier.m_reloadUrl;
    goOnWhere(earlier);
    if (!earlier.m_run)
        return;
    makeRunData();
    m_run->copyLocalData(*earlier.m_run);
    m_run->expectNothing();
    m_isRunStarted = true;
}

void NDocumentLoad::comeBack(const NDocumentLoad& earlier, qint64 loadStartMs)
{
    goOnWhere(earlier);
    QUrl url(earlier.m_url);
    if (url.isValid() && !url.isEmpty()) {
        docsurl::replaceQueryItem(url, QStringLiteral("from"), QStringLiteral("discard-page-reload"));
        docsurl::replaceQueryItem(url, QStringLiteral("startTime"), QString::number(loadStartMs));
        docsurl::removeQueryItems(url, {QStringLiteral("traceId"), QStringLiteral("feature"),
                                        QStringLiteral("entryType"), QStringLiteral("interruptUseTime"),
                                        QStringLiteral("prepareUrlTime")});
    }
    take(url.isValid() ? url.toString(QUrl::FullyEncoded) : earlier.m_url);
}

// Showing it.

void NDocumentLoad::showForLoad()
{
    if (isWaitingForVersion())
        return;
    if (nconfigvalues::isDelayedLoadOn()) {
        _delayLoadUrl();
        return;
    }
    initDocsLocalResource();
    showUrl();
}

void NDocumentLoad::showForNotify()
{
    if (isWaitingForVersion())
        return;
    if (_isDelayLoadUrl()) {
        _delayLoadUrl();
        return;
    }
    initDocsLocalResource();
    showUrl();
    ndocslog::info(QStringLiteral("load url: %1").arg(m_url), "NHelioCloudDocsPage::notify");
}

void NDocumentLoad::navigate()
{
    NHelioBrowserWidgetBase* browser = m_host.loadBrowser();
    if (!browser || isWaitingForVersion())
        return;
    initDocsLocalResource();
    if (advance(LoadEvent::Show))
        browser->navigate(m_url);
}

void NDocumentLoad::showAt(const QString& address)
{
    if (container())
        installForRun();
    if (advance(LoadEvent::Show))
        giveToBrowser(QUrl(address));
}

void NDocumentLoad::showInstead(const QUrl& page)
{
    giveToBrowser(page);
}

void NDocumentLoad::giveToBrowser(const QUrl& url)
{
    if (NHelioBrowserWidgetBase* browser = m_host.loadBrowser())
        browser->load(url);
}

bool NDocumentLoad::isLeftFor(const QString& address)
{
    const QUrl present(address);
    if (!isShown() || m_url.isEmpty() || !ndomains::isServiceHost(present.host()))
        return false;
    const QUrl told(m_url);
    const bool isHere = docsurl::isDocumentUrl(told) || docsurl::isDocumentUrl(present)
                            ? nresourcerequests::isSameDocument(told, present)
                            : docsurl::withoutOpenTimeItems(m_url) == docsurl::withoutOpenTimeItems(address);
    if (isHere)
        m_hasArrived = true;
    return !isHere && m_hasArrived;
}

void NDocumentLoad::noteAddress(const QString& url)
{
    if (!isHeldBack()) // else it is where the document before is
        m_reloadUrl = ndomains::isServiceHost(QUrl(url).host()) ? url : QString();
}

void NDocumentLoad::onViewMade()
{
    initDocsLocalResource();
    if (m_waitsForView)
        showUrl();
}

/** Has the page's requests answered from a local package when one fits. */
void NDocumentLoad::initDocsLocalResource()
{
    constexpr auto operation = "NHelioCloudDocsPage::initDocsLocalResource";
    if (!container())
        return;
    if (!m_requestedFrontVer.isEmpty()) {
        ndocslog::info(QStringLiteral("requested front ver availabel"), operation);
        _updateProxy(m_requestedFrontVer);
        return;
    }
    ndocslog::info(QStringLiteral("requested front ver not availabel"), operation);
    checkTakeOver();
    m_host.loadProxies().setProxy(proxyInfo());
}

void NDocumentLoad::_updateProxy(const QString& frontVer)
{
    constexpr auto operation = "NHelioCloudDocsPage::_updateProxy";
    if (!container())
        return;
    ndocslog::info(QStringLiteral("update proxy"), operation);
    checkTakeOver();
    if (m_host.loadProxies().updateProxy(proxyInfo(frontVer))) {
        NDOPResourceManager::instance()->loadLocalResources(m_fileId, m_officeType, frontVer);
    } else {
        m_url = docsurl::withoutLocalPackageItems(m_url);
        ndocslog::info(QStringLiteral("params removed"), operation);
    }
    showUrl();
    ndocslog::info(QStringLiteral("load url %1").arg(m_url), operation);
    m_isDelayOver = true;
    ndocslog::info(QStringLiteral("set delay load finished"), operation);
}

bool NDocumentLoad::_isDelayLoadUrl() const
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

void NDocumentLoad::_delayLoadUrl()
{
    constexpr auto operation = "NHelioCloudDocsPage::_delayLoadUrl";
    if (m_isDelayOver) {
        ndocslog::info(QStringLiteral("delay load finished"), operation);
        return;
    }
    if (m_delayTimer.isActive()) {
        ndocslog::info(QStringLiteral("delay load started"), operation);
        return;
    }
    if (!m_requestedFrontVer.isEmpty() && container()) {
        ndocslog::info(QStringLiteral("requested front ver %1").arg(m_requestedFrontVer), operation);
        _updateProxy(m_requestedFrontVer);
        return;
    }
    advance(LoadEvent::Delay);
    m_delayTimer.start(nconfigvalues::delayIntervalMs());
    ndocslog::info(QStringLiteral("start delay load"), operation);
}

void NDocumentLoad::onDelayLoadUrl()
{
    constexpr auto operation = "NHelioCloudDocsPage::onDelayLoadUrl";
    if (m_isDelayOver) {
        ndocslog::info(QStringLiteral("url already loaded"), operation);
        return;
    }
    if (!m_host.loadBrowser()) {
        ndocslog::info(QStringLiteral("browser null ptr"), operation);
        return;
    }
    ndocslog::info(QStringLiteral("desotry delay load timer"), operation);
    advance(LoadEvent::Release);
    initDocsLocalResource();
    showUrl();
    ndocslog::info(QStringLiteral("load url %1").arg(m_url), operation);
    m_isDelayOver = true;
    ndocslog::info(QStringLiteral("set delay load finished"), operation);
}

void NDocumentLoad::showUrl()
{
    if (NHelioBrowserWidgetBase* browser = m_host.loadBrowser()) {
        browser->setStartupUrl(m_url);
        _loadUrl();
    }
}

void NDocumentLoad::_loadUrl()
{
    NHelioBrowserWidgetBase* browser = m_host.loadBrowser();
    m_waitsForView = m_host.loadTakeOver().isPrepared() && !container();
    if (m_waitsForView || !advance(LoadEvent::Show))
        return;
    m_delayTimer.stop();
    if (m_host.loadTakeOver().isPrepared() && checkTakeOver())
        return;
    browser->setEnableStartupUrl(true);
    if (m_url.isEmpty() || browser->currentUrl().compare(m_url, Qt::CaseInsensitive) == 0)
        return;
    browser->setProperty("skipLoadingWidgetInjection", false);
    QMetaObject::invokeMethod(browser, "injectLoadingWidgetFlag");
    giveToBrowser(QUrl(m_url));
}

// A front end that runs already.

bool NDocumentLoad::checkTakeOver()
{
    NTakeOver& takeOver = m_host.loadTakeOver();
    const bool wasUsed = takeOver.isUsed();
    const bool isUsed = takeOver.check(container(), {m_url, m_fileId, m_officeType, m_traceId, QString()});
    if (isUsed && !wasUsed)
        _waitStartedPreRequest();
    return isUsed;
}

void NDocumentLoad::_handlePreloadDocFrameworkWork()
{
    NxWebViewContainer* const view = container();
    NTakeOver& takeOver = m_host.loadTakeOver();
    if (!view || !m_run || !takeOver.isDue())
        return;
    m_host.updateUserAgent();
    takeOver.run(*view, {m_url, m_fileId, m_officeType, m_traceId, m_run->identity().injectId});
}

NDOPProxyInfo NDocumentLoad::proxyInfo(const QString& frontVer) const
{
    NDOPProxyInfo info;
    info.fileId = m_fileId;
    info.officeType = m_officeType;
    info.frontVer = frontVer;
    if (m_run) {
        info.injectId = m_run->identity().injectId;
        info.connId = m_run->identity().connId;
    }
    info.notifyUrl = m_url;
    info.pluginName = NDOPConfig::instance().pluginName(m_officeType);
    info.traceId = m_traceId;
    return info;
}

void NDocumentLoad::setLoadFinished()
{
    m_isLoadFinished = true;
    m_hasArrived = isShown();
}

void NDocumentLoad::onWebFileReady(const QMap<QString, QString>& info)
{
    advance(LoadEvent::WebFileReady);
    m_webFileInfo = info;
}

std::optional<NDocsOfflinePage::NDOPResponseData> NDocumentLoad::reply(const QString& name) const
{
    return m_run ? m_run->reply(name) : std::nullopt;
}
