#include "page/NHelioCloudDocsPage.h"

#include "base/NClock.h"
#include "base/NDocsLog.h"
#include "base/NDomains.h"
#include "bridge/NHelioCloudDocsAsynJsObj.h"
#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/NHelioSubPage.h"
#include "nrt/NSettings.h"
#include "page/DocsUrl.h"
#include "page/NCefPreloadClient.h"
#include "proxy/NConfigCentreValues.h"
#include "proxy/NDOPConfig.h"
#include "zeolite/NxWebViewContainer.h"

#include <QCoreApplication>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QUrlQuery>

namespace {

constexpr int chromiumBrowserType = 2;

QString browserId()
{
    return QStringLiteral("E863C9B0-0AC0-4C35-A03B-8BD8AD6FB910");
}

QString browserName()
{
    return QStringLiteral("nhelio_cloud_docs_page");
}

QString moduleName()
{
    return QStringLiteral("skyleaf");
}

int readDiscardSeconds()
{
    constexpr int oneHour = 3600;
    nrt::NCCCommonSettings settings;
    settings.beginGroup(QStringLiteral("discardPage"));
    bool isNumber = false;
    const int seconds = settings.value(QStringLiteral("inactivatePageDiscardTime"), oneHour).toInt(&isNumber);
    return isNumber && seconds >= 0 ? seconds : oneHour;
}

/** The text after the last dot, unless that dot is the first character. */
QString suffixOfName(const QString& name)
{
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    return dot > 0 ? name.mid(dot + 1) : QString();
}

bool isDiscardablePackage(const QString& package)
{
    static const QStringList packages{QStringLiteral("word"),   QStringLiteral("vs"),  QStringLiteral("vpp"),
                                      QStringLiteral("nsheet"), QStringLiteral("otl"), QStringLiteral("db")};
    return packages.contains(package, Qt::CaseInsensitive);
}

} // namespace

NHelioCloudDocsPage::NHelioCloudDocsPage(QWidget* parent, bool createBrowser, bool tryPreloadBrowser)
    : NHelioBrowserPageRoot(parent)
    , m_proxyManager(std::make_unique<NCloudDocsPageProxyManager>())
{
    m_sinceConstruction.start();
    qRegisterMetaType<bool>("bool&");
    setAcceptDrops(true);
    connect(browserCreator(), &NHelioBrowserCreator::createSucceeded, this,
            &NHelioCloudDocsPage::onCreateSucceeded);
    m_discardSeconds = readDiscardSeconds();
    fillCreateInfo();
    if (createBrowser)
        createOrTakeBrowser(tryPreloadBrowser);
    if (NHelioApplication* application = NHelioApplication::instance())
        application->installPluginTranslation(moduleName(), {moduleName()});
    connect(&m_unusedPageTimer, &QTimer::timeout, this, &NHelioCloudDocsPage::onCleanTimeout);
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this,
            &NHelioCloudDocsPage::onAboutToQuit);
}

NHelioCloudDocsPage::~NHelioCloudDocsPage()
{
    if (NHelioApplication* application = NHelioApplication::instance())
        application->uninstallPluginTranslation(moduleName(), {moduleName()});
    m_proxyManager->removeProxies();
    offerContainerBack();
    m_vcsTimeoutTimer.reset();
    m_delayLoadTimer.reset();
    m_proxyManager.reset();
    m_requestTask.reset();
}

void NHelioCloudDocsPage::fillCreateInfo()
{
    m_createInfo.id = browserId();
    m_createInfo.name = browserName();
    m_createInfo.pageFactory = &m_hyperlinkFactory;
    m_createInfo.browserType = chromiumBrowserType;
}

void NHelioCloudDocsPage::createOrTakeBrowser(bool tryPreloadBrowser)
{
    if (tryPreloadBrowser) {
        m_initByPreloadBrowser = NCefPreloadClient::instance().createBrowser(
            NCefPreloadClient::containerName(), this, browserCreator(), m_createInfo);
    }
    if (!m_initByPreloadBrowser)
        CreateHelioBrowserWidget(this, browserCreator(), chromiumBrowserType, browserId(), browserName(), 0);
    ndocslog::info(QStringLiteral("bTryToUsePreloadBrowser: %1, initByPreloadBrowser: %2")
                       .arg(int(tryPreloadBrowser))
                       .arg(int(m_initByPreloadBrowser)),
                   "NHelioCloudDocsPage::NHelioCloudDocsPage");
}

int NHelioCloudDocsPage::widgetType() const
{
    return 1;
}

void NHelioCloudDocsPage::_preInit(const QJsonObject& params)
{
    constexpr auto operation = "NHelioCloudDocsPage::_preInit";
    if (m_preInitEntry.isEmpty()) {
        m_preInitEntry = params.value(QLatin1String("entry")).toString();
        ndocslog::info(QStringLiteral("to preinit, m_preInitEntry: %1 %2")
                           .arg(m_preInitEntry, QString::number(reinterpret_cast<quintptr>(this))),
                       operation);
        postPrecreateEvent(true);
    }
    m_preInitCalled = true;

    const QString fileId = params.value(QLatin1String("fileId")).toString();
    if (!fileId.isEmpty())
        preInitDocument(fileId, params);

    if (m_browser) {
        if (!m_preInited) {
            m_browser->setStartupUrl(QStringLiteral("about:blank"));
            m_browser->setProperty("skipLoadingWidgetInjection", true);
        }
        m_browser->setProperty("webViewType", QStringLiteral("webkitWebView"));
        m_browser->initWebView();
        ndocslog::info(QStringLiteral("init browser"), operation);
    }
    m_preInited = true;
    m_unusedPageTimer.start(nconfigvalues::unusedPageLifetimeMs());
}

void NHelioCloudDocsPage::preInitDocument(const QString& fileId, const QJsonObject& params)
{
    const QString fileName = params.value(QLatin1String("fileName")).toString();
    setProperty("fileName", fileName);
    const auto& config = NDocsOfflinePage::NDOPConfig::instance();
    const QString officeType = config.officeTypeCode(QFileInfo(fileName).suffix());
    const bool clientProxy = config.isDopEnabled(officeType);

    QUrl url(ndomains::url(QStringLiteral("quill_api_spec")));
    url.setPath(QStringLiteral("/p/") + fileId);
    docsurl::replaceQueryItem(url, QStringLiteral("pcEnter"), QStringLiteral("joinonline"));
    docsurl::replaceQueryItem(url, QStringLiteral("openEnv"), QStringLiteral("hybrid"));
    docsurl::replaceQueryItem(url, QStringLiteral("localId"),
                              params.value(QLatin1String("localId")).toString());
    docsurl::replaceQueryItem(url, QStringLiteral("title"), fileName);
    docsurl::replaceQueryItem(url, QStringLiteral("officeType"), officeType);
    docsurl::replaceQueryItem(url, QStringLiteral("client_proxy"),
                              clientProxy ? QStringLiteral("true") : QStringLiteral("false"));

    m_officeType = officeType;
    if (!m_networkRequestStarted) {
        m_notify_URL = url.toString(QUrl::FullyEncoded);
        ndocslog::info(QStringLiteral("m_notify_URL: %1").arg(m_notify_URL), "NHelioCloudDocsPage::_preInit");
    }
    if (clientProxy)
        _startNetworkRequest();
    setProperty("precreated_page_id", fileId);
}

void NHelioCloudDocsPage::load()
{
    if (m_loaded)
        return;
    m_loaded = true;
    m_loadCalled = true;
    setProperty("is_unuse_precreated", false);
    ndocslog::info(QStringLiteral("m_preInited: %1, currentMSecsSinceEpoch: %2")
                       .arg(int(m_preInited))
                       .arg(nclock::nowMs()),
                   "NHelioCloudDocsPage::load");
    if (m_preInited)
        postPrecreateEvent(false);
    m_loadStartMs = nclock::nowMs();

    if (browserCreator()->isCreateSucceeded()) {
        m_steps.record(QStringLiteral("init_self_load"), m_sinceConstruction);
        initSelf();
    } else {
        m_steps.record(QStringLiteral("notify_later_load"), m_sinceConstruction);
        m_pendingInitSelf = true;
    }
    postOpenStep(QStringLiteral("load"), m_browser ? m_browser->currentUrl() : QString());
}

void NHelioCloudDocsPage::initSelf()
{
    if (!m_browser)
        return;
    const NTimedStep timed(m_steps, QStringLiteral("initself"));
    applyRecoverItem();
    ndocslog::info(QStringLiteral("initByPreloadBrowser: %1, init self url %2")
                       .arg(QString::number(int(m_initByPreloadBrowser)), m_notify_URL),
                   "NHelioCloudDocsPage::initSelf");
    m_browser->setProperty("webViewType", QStringLiteral("webkitWebView"));
    if (!m_jsObj) {
        if (isReleased())
            postMemoryRelease(QStringLiteral("restart"));
        m_released = false;
        m_browser->initWebView();
    }
    if (m_reloadAfterDiscard)
        prepareReload();
    const QString fileName = property("fileName").toString();
    if (m_initByPreloadBrowser && !fileName.isEmpty())
        QMetaObject::invokeMethod(m_browser, "onShowWebLoadingWidget", Q_ARG(QString, fileName));

    if (!m_waitingForVcs) {
        if (nconfigvalues::isDelayedLoadOn()) {
            _delayLoadUrl();
        } else {
            initDocsLocalResource();
            showUrl();
        }
    }
    // Else the start page would be shown while the document waits.
    if (isLoadHeldBack())
        m_browser->setEnableStartupUrl(false);

    const NHelioApplication* application = NHelioApplication::instance();
    const NHelioCloudCollectInfoMgr* collector =
        application ? application->getCloudCollectInfoMgr() : nullptr;
    const qint64 openStart = collector ? collector->openStartTime() : 0;
    if (openStart > 0)
        m_openTimePoints << openStart << nclock::monotonicNs();
}

void NHelioCloudDocsPage::applyRecoverItem()
{
    if (!m_recoverContext.recover || m_recoverContext.items.isEmpty())
        return;
    const NHelioWorkAreaRecoverItem item = m_recoverContext.items.first();
    QString url = item.params.value(QStringLiteral("url"), m_notify_URL).toString();
    url = docsurl::withQueryItem(url, QStringLiteral("startTime"), QString::number(nclock::nowMs()));
    url = docsurl::withQueryItem(
        url, QStringLiteral("from"),
        item.params.value(QStringLiteral("from"), QStringLiteral("recover")).toString());
    setProperty("File_ID", item.params.value(QStringLiteral("fileId")));
    setProperty("fileName", item.params.value(QStringLiteral("fileName")));
    setProperty("suffix", item.suffix);
    m_toolBarVisible = item.params.value(QStringLiteral("toolBarVisible")).toBool();
    m_browser->setToolbarVisible(m_toolBarVisible);
    m_recoverContext.items.clear();
    normalizeUrl(url);
}

void NHelioCloudDocsPage::prepareReload()
{
    m_reloadAfterDiscard = false;
    QUrl url(m_notify_URL);
    if (url.isValid()) {
        docsurl::replaceQueryItem(url, QStringLiteral("from"), QStringLiteral("discard-page-reload"));
        docsurl::replaceQueryItem(url, QStringLiteral("startTime"), QString::number(m_loadStartMs));
        docsurl::removeQueryItems(url, {QStringLiteral("traceId"), QStringLiteral("feature"),
                                        QStringLiteral("entryType"), QStringLiteral("interruptUseTime"),
                                        QStringLiteral("prepareUrlTime")});
        m_notify_URL = url.toString(QUrl::FullyEncoded);
    }
    m_traceId.clear();
    m_preloadFrameworkChecked = true;
    m_preloadFrameworkUsed = false;
    m_webFileReady = false;
    m_loadFinished = false;
    normalizeUrl(m_notify_URL);
    m_browser->setStartupUrl(m_notify_URL);
}

void NHelioCloudDocsPage::showUrl()
{
    m_browser->setStartupUrl(m_notify_URL);
    _loadUrl();
}

void NHelioCloudDocsPage::_loadUrl()
{
    if (m_initByPreloadBrowser) {
        NxWebViewContainer* container = m_browser->webViewContainer();
        if (!container || _checkPreloadDocFramework(container))
            return;
    }
    m_browser->setEnableStartupUrl(true);
    if (m_notify_URL.isEmpty() || m_browser->currentUrl().compare(m_notify_URL, Qt::CaseInsensitive) == 0)
        return;
    m_browser->setProperty("skipLoadingWidgetInjection", false);
    QMetaObject::invokeMethod(m_browser, "injectLoadingWidgetFlag");
    m_browser->load(QUrl(m_notify_URL));
}

bool NHelioCloudDocsPage::isDiscardable() const
{
    if (!m_browser || !browserCreator()->isCreateSucceeded() || !m_browser->isDiscardable())
        return false;
    const auto& config = NDocsOfflinePage::NDOPConfig::instance();
    const QString officeType = config.officeTypeCode(fileSuffix());
    if (!isDiscardablePackage(config.packageName(officeType)))
        return false;
    NHelioMainWindow* window = mainWindow();
    if (m_browser->hasActivity() || !window || !window->centralArea() ||
        window->centralArea()->currentPage() == this)
        return false;
    if (!m_lastActiveTime.isValid())
        return false;
    const QDateTime now = nclock::now();
    return m_lastActiveTime.secsTo(now) >= m_discardSeconds &&
           (now.toMSecsSinceEpoch() - m_loadStartMs) / 1000 >= m_discardSeconds;
}

void NHelioCloudDocsPage::releasePage()
{
    if (!m_browser)
        return;
    noteShownUrl();
    m_browser->releaseWebView();
    m_jsObj = nullptr;
    m_loaded = false;
    m_loadFinished = false;
    m_released = true;
    postMemoryRelease(QStringLiteral("release"));
    m_initByPreloadBrowser = false;
    m_reloadAfterDiscard = true;
    if (NHelioSubPage* subPage = initialSubPage())
        subPage->refreshIcon();
}

/** A page of the service that has led elsewhere, as that for a new document does, comes back to where it led.
 */
void NHelioCloudDocsPage::noteShownUrl()
{
    const QString shown = getCurrentUrl();
    if (m_reloadUrl.isEmpty() || shown != m_reloadUrl ||
        docsurl::withoutOpenTimeItems(shown) == docsurl::withoutOpenTimeItems(m_notify_URL))
        return;
    m_notify_URL = shown;
}

bool NHelioCloudDocsPage::isReleased() const
{
    return m_released;
}

bool NHelioCloudDocsPage::recoverFiles(const QList<NHelioWorkAreaRecoverItem>& items, int strategy,
                                       NHelioSubPage* subPage)
{
    if (items.isEmpty())
        return false;
    m_recoverContext.recover = true;
    m_recoverContext.strategy = strategy;
    m_recoverContext.items = items;
    return NHelioBrowserPageRoot::recoverFiles(items, strategy, subPage);
}

void NHelioCloudDocsPage::updateLastActiveTime()
{
    m_lastActiveTime = nclock::now();
}

void NHelioCloudDocsPage::notifyFocusIn()
{
    const NHelioMainWindow* window = mainWindow();
    if (window && window->isFocusLockedInCurrentPage())
        return;
    NHelioBrowserPageRoot::notifyFocusIn();
    if (m_browser)
        m_browser->setFocus();
}

bool NHelioCloudDocsPage::isAlive() const
{
    const NHelioSubPage* subPage = initialSubPage();
    return !subPage || !subPage->tabAssistant() || !subPage->tabAssistant()->isHidden();
}

QString NHelioCloudDocsPage::pageTitle() const
{
    if (!m_title.isEmpty())
        return m_title;
    const QString baseName = QFileInfo(property("fileName").toString()).completeBaseName();
    if (!baseName.isEmpty())
        return baseName;
    if (m_browser && browserCreator()->isCreateSucceeded() && !m_browser->title().isEmpty())
        return m_browser->title();
    return tr("VLT Docs");
}

void NHelioCloudDocsPage::handleNotifyParams(const QVariantMap& params)
{
    const QString key = QStringLiteral("notifyParams");
    if (params.contains(key))
        notify(params.value(key).toString());
}

void NHelioCloudDocsPage::setFileSrcFrom(const QString& url)
{
    Q_UNUSED(url)
}

void NHelioCloudDocsPage::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData() ? event->mimeData()->urls() : QList<QUrl>();
    if (!urls.isEmpty())
        m_droppedFiles.append(urls.first().toLocalFile());
}

void NHelioCloudDocsPage::onCleanTimeout()
{
    if (m_loadCalled || isVisible())
        return;
    const NHelioApplication* application = NHelioApplication::instance();
    NHelioMainWindow* window =
        application ? application->findRelativeHelioMainWindow(parentWidget()) : nullptr;
    NHelioCentralArea* centralArea = window ? window->centralArea() : nullptr;
    if (!centralArea)
        return;
    postPrecreateEvent(false);
    centralArea->removePage(this);
    deleteLater();
}

void NHelioCloudDocsPage::onAboutToQuit()
{
    if (m_initByPreloadBrowser && m_browser)
        m_initByPreloadBrowser = false;
}

void NHelioCloudDocsPage::onClose()
{
    close();
}

void NHelioCloudDocsPage::onCloseBrowserPage(const QString& url)
{
    Q_UNUSED(url)
    NHelioSubPage* subPage = initialSubPage();
    NHelioMainWindow* window = mainWindow();
    NHelioTabBar* tabBar = window ? window->tabBar() : nullptr;
    NHelioTab* tab = subPage && tabBar ? tabBar->tabOf(subPage) : nullptr;
    if (tab)
        tab->tryClose();
    else
        close();
}

NHelioMainWindow* NHelioCloudDocsPage::mainWindow() const
{
    const NHelioApplication* application = NHelioApplication::instance();
    return application ? application->findRelativeHelioMainWindow(this) : nullptr;
}

QString NHelioCloudDocsPage::fileSuffix() const
{
    return suffixOfName(m_webFileInfo.value(QStringLiteral("fileName")));
}
