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

#include <utility>

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
    m_load = makeLoad(LoadReason::Told);
    m_telemetry.start();
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
    m_load->end();
    offerContainerBack();
}

NHelioCloudDocsPage::LoadPtr NHelioCloudDocsPage::makeLoad(LoadReason reason)
{
    LoadPtr load(new NDocumentLoad(*this, reason, this));
    connect(load.get(), &NDocumentLoad::officeTypeChanged, this, &NHelioCloudDocsPage::onOfficeTypeChanged);
    connect(load.get(), &NDocumentLoad::replyCame, this, &NHelioCloudDocsPage::onReplyCame);
    connect(load.get(), &NDocumentLoad::cookiesCame, this, &NHelioCloudDocsPage::onAppendResponseCookies);
    return load;
}

void NHelioCloudDocsPage::replaceLoad(
    LoadReason reason, const std::function<void(NDocumentLoad& load, const NDocumentLoad& earlier)>& fill)
{
    if (m_takeOver.isUsed()) {
        m_takeOver.end();
        updateUserAgent();
    }
    const LoadPtr earlier = std::exchange(m_load, makeLoad(reason));
    fill(*m_load, *earlier);
    earlier->end();
    onOfficeTypeChanged(m_load->officeType());
}

bool NHelioCloudDocsPage::tell(const QString& url, LoadReason reason)
{
    const QString before = m_load->url();
    if (m_load->takes(url))
        m_load->take(url);
    else
        replaceLoad(reason, [&url](NDocumentLoad& load, const NDocumentLoad&) { load.take(url); });
    return m_load->url() != before;
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
        m_takeOver.setPrepared(NCefPreloadClient::instance().createBrowser(
            NCefPreloadClient::containerName(), this, browserCreator(), m_createInfo));
    }
    if (!m_takeOver.isPrepared())
        CreateHelioBrowserWidget(this, browserCreator(), chromiumBrowserType, browserId(), browserName(), 0);
    ndocslog::info(QStringLiteral("bTryToUsePreloadBrowser: %1, initByPreloadBrowser: %2")
                       .arg(int(tryPreloadBrowser))
                       .arg(int(m_takeOver.isPrepared())),
                   "NHelioCloudDocsPage::NHelioCloudDocsPage");
}

void NHelioCloudDocsPage::offerContainerBack()
{
    if (!m_takeOver.isPrepared() || !m_browser || !mainWindow())
        return;
    NxWebViewContainer* container = m_browser->webViewContainer();
    if (!container)
        return;
    container->setWebViewParent(this);
    if (!NCefPreloadClient::instance().recoverContainer(NCefPreloadClient::containerName(), container))
        container->destroyLater();
}

bool NHelioCloudDocsPage::hasBrowser() const
{
    return m_browser && browserCreator()->isCreateSucceeded();
}

int NHelioCloudDocsPage::widgetType() const
{
    return 1;
}

void NHelioCloudDocsPage::_preInit(const QJsonObject& params)
{
    constexpr auto operation = "NHelioCloudDocsPage::_preInit";
    if (m_preCreation.entry.isEmpty()) {
        m_preCreation.entry = params.value(QLatin1String("entry")).toString();
        ndocslog::info(QStringLiteral("to preinit, m_preInitEntry: %1 %2")
                           .arg(m_preCreation.entry, QString::number(reinterpret_cast<quintptr>(this))),
                       operation);
        m_telemetry.postPrecreate(true, stage(), *m_load);
    }
    m_preCreation.isAsked = true;

    const QString fileId = params.value(QLatin1String("fileId")).toString();
    if (!fileId.isEmpty())
        preInitDocument(fileId, params);

    if (m_browser) {
        if (!m_preCreation.isDone) {
            m_browser->setStartupUrl(QStringLiteral("about:blank"));
            m_browser->setProperty("skipLoadingWidgetInjection", true);
        }
        m_browser->setProperty("webViewType", QStringLiteral("webkitWebView"));
        m_browser->initWebView();
        ndocslog::info(QStringLiteral("init browser"), operation);
    }
    m_preCreation.isDone = true;
    m_unusedPageTimer.start(nconfigvalues::unusedPageLifetimeMs());
}

void NHelioCloudDocsPage::preInitDocument(const QString& fileId, const QJsonObject& params)
{
    const QString fileName = params.value(QLatin1String("fileName")).toString();
    setProperty("fileName", fileName);
    const auto& config = NDocsOfflinePage::NDOPConfig::instance();
    const QString officeType = config.officeTypeCode(QFileInfo(fileName).suffix());

    QUrl url(ndomains::url(QStringLiteral("quill_api_spec")));
    url.setPath(QStringLiteral("/p/") + fileId);
    docsurl::replaceQueryItem(url, QStringLiteral("pcEnter"), QStringLiteral("joinonline"));
    docsurl::replaceQueryItem(url, QStringLiteral("openEnv"), QStringLiteral("hybrid"));
    docsurl::replaceQueryItem(url, QStringLiteral("localId"),
                              params.value(QLatin1String("localId")).toString());
    docsurl::replaceQueryItem(url, QStringLiteral("title"), fileName);
    docsurl::replaceQueryItem(url, QStringLiteral("officeType"), officeType);
    docsurl::replaceQueryItem(url, QStringLiteral("client_proxy"),
                              config.isDopEnabled(officeType) ? QStringLiteral("true")
                                                              : QStringLiteral("false"));
    const QString text = url.toString(QUrl::FullyEncoded);
    const auto fill = [&](NDocumentLoad& load, const NDocumentLoad&) {
        load.takeAhead(text, fileId, officeType);
    };
    if (m_load->url().isEmpty() || m_load->fileId() == fileId)
        fill(*m_load, *m_load);
    else
        replaceLoad(LoadReason::MadeAhead, fill);
    setProperty("precreated_page_id", fileId);
}

void NHelioCloudDocsPage::load()
{
    if (m_stage == Stage::AwaitBrowser || m_stage == Stage::Loaded)
        return;
    const bool isReturn = m_stage == Stage::Released;
    const bool isBrowserThere = browserCreator()->isCreateSucceeded();
    m_stage = isBrowserThere ? Stage::Loaded : Stage::AwaitBrowser;
    setProperty("is_unuse_precreated", false);
    ndocslog::info(QStringLiteral("m_preInited: %1, currentMSecsSinceEpoch: %2")
                       .arg(int(m_preCreation.isDone))
                       .arg(nclock::nowMs()),
                   "NHelioCloudDocsPage::load");
    if (m_preCreation.isDone)
        m_telemetry.postPrecreate(false, stage(), *m_load);
    m_telemetry.setLoadStart(nclock::nowMs());

    if (isBrowserThere) {
        m_telemetry.record(QStringLiteral("init_self_load"));
        if (isReturn)
            comeBack();
        initSelf();
    } else {
        m_telemetry.record(QStringLiteral("notify_later_load"));
    }
    m_telemetry.postStep(QStringLiteral("load"), stage(), *m_load, browserUrl());
}

/** What the page shows is made new before its web view is, which asks for it at once. */
void NHelioCloudDocsPage::comeBack()
{
    m_telemetry.postMemoryRelease(QStringLiteral("restart"), *m_load);
    if (m_load->state() != LoadState::Resting) // told something else meanwhile
        return;
    replaceLoad(LoadReason::Return, [this](NDocumentLoad& load, const NDocumentLoad& earlier) {
        load.comeBack(earlier, m_telemetry.loadStartMs());
    });
    m_browser->setStartupUrl(m_load->url());
}

void NHelioCloudDocsPage::initSelf()
{
    if (!m_browser)
        return;
    const NTimedStep timed = m_telemetry.timedStep(QStringLiteral("initself"));
    applyRecoverItem();
    ndocslog::info(QStringLiteral("initByPreloadBrowser: %1, init self url %2")
                       .arg(QString::number(int(m_takeOver.isPrepared())), m_load->url()),
                   "NHelioCloudDocsPage::initSelf");
    m_browser->setProperty("webViewType", QStringLiteral("webkitWebView"));
    // Else the start page would be shown while the document waits.
    if (m_load->isHeldBack())
        m_browser->setEnableStartupUrl(false);
    if (!m_jsObj)
        m_browser->initWebView();
    const QString fileName = property("fileName").toString();
    if (m_takeOver.isPrepared() && !fileName.isEmpty())
        QMetaObject::invokeMethod(m_browser, "onShowWebLoadingWidget", Q_ARG(QString, fileName));

    m_load->showForLoad();
    if (m_load->isHeldBack())
        m_browser->setEnableStartupUrl(false);

    const NHelioApplication* application = NHelioApplication::instance();
    const NHelioCloudCollectInfoMgr* collector =
        application ? application->getCloudCollectInfoMgr() : nullptr;
    m_telemetry.noteOpenStart(collector ? collector->openStartTime() : 0);
}

void NHelioCloudDocsPage::applyRecoverItem()
{
    if (!m_recoverContext.recover || m_recoverContext.items.isEmpty())
        return;
    const NHelioWorkAreaRecoverItem item = m_recoverContext.items.first();
    QString url = item.params.value(QStringLiteral("url"), m_load->url()).toString();
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
    tell(url, LoadReason::Recovery);
}

bool NHelioCloudDocsPage::isDiscardable() const
{
    if (!hasBrowser() || !m_browser->isDiscardable())
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
           (now.toMSecsSinceEpoch() - m_telemetry.loadStartMs()) / 1000 >= m_discardSeconds;
}

void NHelioCloudDocsPage::releasePage()
{
    if (!m_browser)
        return;
    m_load->rest();
    m_browser->releaseWebView();
    m_jsObj = nullptr;
    m_stage = Stage::Released;
    m_telemetry.postMemoryRelease(QStringLiteral("release"), *m_load);
    m_takeOver.end();
    m_takeOver.setPrepared(false);
    if (NHelioSubPage* subPage = initialSubPage())
        subPage->refreshIcon();
}

bool NHelioCloudDocsPage::isReleased() const
{
    return m_stage == Stage::Released;
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
    if (hasBrowser() && !m_browser->title().isEmpty())
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
    if (m_stage != Stage::Made || isVisible())
        return;
    const NHelioApplication* application = NHelioApplication::instance();
    NHelioMainWindow* window =
        application ? application->findRelativeHelioMainWindow(parentWidget()) : nullptr;
    NHelioCentralArea* centralArea = window ? window->centralArea() : nullptr;
    if (!centralArea)
        return;
    m_telemetry.postPrecreate(false, stage(), *m_load);
    centralArea->removePage(this);
    deleteLater();
}

void NHelioCloudDocsPage::onAboutToQuit()
{
    if (m_browser)
        m_takeOver.setPrepared(false);
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
    return suffixOfName(m_load->webFileInfo().value(QStringLiteral("fileName")));
}

QString NHelioCloudDocsPage::fileNameSuffix() const
{
    return QFileInfo(property("fileName").toString()).suffix();
}

QString NHelioCloudDocsPage::pageSuffix() const
{
    return property("suffix").toString();
}

NOpenTelemetry::PageStage NHelioCloudDocsPage::stage() const
{
    const bool isLoaded = m_stage == Stage::Loaded || m_stage == Stage::AwaitBrowser;
    return {m_preCreation.entry, m_preCreation.isDone, isLoaded, m_stage != Stage::Made};
}

QString NHelioCloudDocsPage::browserUrl() const
{
    return m_browser ? m_browser->currentUrl() : QString();
}
