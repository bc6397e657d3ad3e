#include "page/NHelioCloudDocsPage.h"

#include "base/NClock.h"
#include "base/NDocsLog.h"
#include "base/NDomains.h"
#include "base/NReadOnce.h"
#include "bridge/NHelioCloudDocsAsynJsObj.h"
#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/NHelioCloudSvrProxy.h"
#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/NHelioSubPage.h"
#include "nrt/dirs.h"
#include "nrt/product.h"
#include "page/BrowserDirs.h"
#include "page/BrowserExceptionInfoCollector.h"
#include "page/DocsUrl.h"
#include "page/NCefPreloadClient.h"
#include "proxy/NConfigCentreValues.h"
#include "proxy/NDOPConfig.h"
#include "proxy/NOpenUsageRecord.h"
#include "proxy/NVersionCheckCache.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NxWebViewContainer.h"

#include <QVBoxLayout>

// The page and its browser: wiring, and what follows the browser's signals.

namespace {

constexpr quint32 accountCapability = 0x40000;

// Flags of the browser widget; their meaning is the widget's.
constexpr int flagAlwaysOff = 1024;
constexpr int flagToolBar = 2;
constexpr int flagAlwaysOn = 512;
constexpr int flagIntranet = 16384;

QUrl errorPage(const QString& name)
{
    static NReadOnce<QString> resources([] { return nrt::dirs::resourceDir(QStringLiteral("skyleaf")); });
    return QUrl(QStringLiteral("file:///") +
                resources().mid(resources().startsWith(QLatin1Char('/')) ? 1 : 0) +
                QStringLiteral("/mui/zh_CN/res/web/%1/index.html").arg(name));
}

} // namespace

void NHelioCloudDocsPage::onCreateSucceeded(NHelioBrowserWidgetBase* browser)
{
    m_telemetry.record(QStringLiteral("create_succeeded"));
    m_browser = browser;
    m_proxyManager->setBrowser(browser);
    Q_EMIT sigBrowserCreateSucceeded(browser);

    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->addWidget(browser);
    applyToolBarVisible();
    if (!m_preCreation.isDone)
        browser->setStartupUrl(serviceStartPage());
    wireBrowser();
    connectLoginChange();
    setBrowserPathsAndFlags();
    if (m_stage == Stage::AwaitBrowser) {
        m_stage = Stage::Loaded;
        initSelf();
    }
}

void NHelioCloudDocsPage::wireBrowser()
{
    connect(m_browser, &NHelioBrowserWidgetBase::webviewCreated, this,
            &NHelioCloudDocsPage::onWebviewCreated);
    connect(m_browser, &NHelioBrowserWidgetBase::browserCreated, this,
            &NHelioCloudDocsPage::onBrowserCreated);
    connect(m_browser, &NHelioBrowserWidgetBase::loadFinished, this, &NHelioCloudDocsPage::onLoadFinished);
    connect(m_browser, &NHelioBrowserWidgetBase::creatingApi, this, &NHelioCloudDocsPage::onCreatingApi);
    connect(m_browser, &NHelioBrowserWidgetBase::titleChanged, this, &NHelioCloudDocsPage::onTitleChanged);
    connect(m_browser, &NHelioBrowserWidgetBase::cefProcessAbort, this,
            &NHelioCloudDocsPage::onCefProcessAbort);
    connect(m_browser, &NHelioBrowserWidgetBase::windowDestroying, this, &NHelioCloudDocsPage::onClose,
            Qt::UniqueConnection);
    connect(m_browser, &NHelioBrowserWidgetBase::faviconChange, this, &NHelioCloudDocsPage::onFaviconChange);
    connect(m_browser, &NHelioBrowserWidgetBase::closeBrowserPage, this,
            &NHelioCloudDocsPage::onCloseBrowserPage, Qt::QueuedConnection);
    connect(m_browser, &NHelioBrowserWidgetBase::sigLinkClicked, this, &NHelioCloudDocsPage::onLinkClicked);
}

void NHelioCloudDocsPage::connectLoginChange()
{
    const NHelioApplication* application = NHelioApplication::instance();
    if (!application)
        return;
    if (zeolite::isSupported(accountCapability)) {
        if (NHelioAccount* account = application->account()) {
            connect(account, &NHelioAccount::signalLoginStatusChanged, this,
                    &NHelioCloudDocsPage::onLoginStatusChanged);
        }
    } else if (NHelioCloudSvrProxy* proxy = application->cloudSvrProxy()) {
        connect(proxy, &NHelioCloudSvrProxy::loginStatusChanged, this,
                &NHelioCloudDocsPage::onLoginStatusChanged);
    }
}

void NHelioCloudDocsPage::setBrowserPathsAndFlags()
{
    const browserdirs::BrowserDirs directories = browserdirs::browserDirs();
    m_browser->setProperty("cachePath", directories.cachePath);
    m_browser->setProperty("cookiePath", directories.cookiePath);

    m_browser->setFlag(flagAlwaysOff, false);
    m_browser->setFlag(flagToolBar, m_toolBarVisible);
    m_browser->setFlag(flagAlwaysOn, true);
    if (nrt::kcmc::support(QStringLiteral("IntranetVersion")) || zeolite::isSupported(accountCapability))
        m_browser->setFlag(flagIntranet, true);
}

void NHelioCloudDocsPage::onBrowserCreated()
{
    ndocslog::info(QStringLiteral("browser_created"), "NHelioCloudDocsPage::onBrowserCreated");
    m_telemetry.record(QStringLiteral("browser_created"));
    if (!m_browser)
        return;
    if (nrt::product::getFuncSwitchState(QStringLiteral("cloudDocsContainerUnified"), false))
        m_browser->setCreateInfo(m_createInfo);
    _updateCookies(false);
    if (NxWebViewContainer* container = m_browser->webViewContainer()) {
        connect(container, &NxWebViewContainer::beforeBrowser, this, &NHelioCloudDocsPage::slot_beforeBrowser,
                static_cast<Qt::ConnectionType>(Qt::DirectConnection | Qt::UniqueConnection));
    }
    m_telemetry.noteBrowserCreated();
    addSupportedProtocols();
}

void NHelioCloudDocsPage::addSupportedProtocols()
{
    if (!nconfigvalues::areSupportedProtocolsOn()) {
        ndocslog::info(QStringLiteral("supported protocols disabled"),
                       "NHelioCloudDocsPage::addSupportedProtocols");
        return;
    }
    m_browser->addSupportedProtocol(QStringLiteral("weixin"));
    m_browser->addSupportedProtocol(QStringLiteral("xweixin"));
    m_browser->markProtocol(QStringLiteral("xweixin"), true);
}

void NHelioCloudDocsPage::onWebviewCreated(NxWebViewContainer* container)
{
    ndocslog::info(QStringLiteral("webview has been created"), "NHelioCloudDocsPage::onWebviewCreated");
    m_telemetry.record(QStringLiteral("webview_created"));
    if (!container)
        return;
    container->enableDragDrop(true);
    if (m_takeOver.isPrepared())
        m_takeOver.setPreparedTitle(m_browser->title()); // not of the document
    setUserAgent(container);
    connect(container, &NxWebViewContainer::loadError, this, &NHelioCloudDocsPage::onLoadError);
    m_cookies.giveReplyCookies(container, m_load->url());
    m_load->onViewMade();
}

void NHelioCloudDocsPage::updateUserAgent()
{
    if (NxWebViewContainer* container = m_browser ? m_browser->webViewContainer() : nullptr)
        setUserAgent(container);
}

void NHelioCloudDocsPage::setUserAgent(NxWebViewContainer* container)
{
    QString userAgent = container->userAgent() + QStringLiteral(" VLTQuillHybrid/1.0");
    if (m_takeOver.isUsed())
        userAgent += QStringLiteral(" PreloadDocFramework");
    else if (m_takeOver.isPrepared())
        userAgent += QStringLiteral(" PreloadBrowser");
    container->setCustomHeaderHandler([value = userAgent.toUtf8()](QMap<QByteArray, QByteArray>& headers) {
        headers.insert(QByteArrayLiteral("User-Agent"), value);
    });
}

void NHelioCloudDocsPage::onCreatingApi(NxWebViewContainer* container, QObject** object)
{
    m_telemetry.record(QStringLiteral("creating_api"));
    m_jsObj = new NHelioCloudDocsAsynJsObj(container, container, m_browser);
    m_jsObj->setPage(this);
    *object = m_jsObj;
    wireBridge(container);

    m_load->startRequests();
    m_jsObj->setOfficeType(m_load->officeType());
    BrowserExceptionInfoCollector::installOnce();
}

void NHelioCloudDocsPage::wireBridge(NxWebViewContainer* container)
{
    connect(m_jsObj, &NHelioCloudDocsAsynJsObj::sigReload, this, &NHelioCloudDocsPage::onReload);
    connect(m_jsObj, &NHelioCloudDocsAsynJsObj::sigShowOfflinePage, this,
            &NHelioCloudDocsPage::onShowOfflinePage);
    connect(m_jsObj, &NHelioCloudDocsAsynJsObj::sigGotoHomepage, this, &NHelioCloudDocsPage::onGotoHomePage);
    connect(m_jsObj, &NHelioCloudDocsAsynJsObj::sigClose, this, &NHelioCloudDocsPage::onClose);
    connect(m_jsObj, &NHelioCommonJSAPI::sig_webFileReady, this, &NHelioCloudDocsPage::onWebFileReady);
    connect(m_jsObj, &NHelioCommonJSAPI::sig_shareDlgReady, this, &NHelioCloudDocsPage::onShareDlgReady);
    connect(m_jsObj, &NHelioCommonJSAPI::sig_menuItemDataReady, this,
            &NHelioCloudDocsPage::onMenuItemDataReady);

    connect(container, &NxWebViewContainer::dragEnter, m_jsObj, &NHelioCloudDocsAsynJsObj::onDragEnter);
    connect(container, &NxWebViewContainer::addressChange, this, &NHelioCloudDocsPage::onAddressChange);
    connect(container, &NxWebViewContainer::loadStart, this, &NHelioCloudDocsPage::onLoadStart);
    connect(container, &NxWebViewContainer::faviconChange, this, &NHelioCloudDocsPage::onFaviconChange);
    connect(container, &NxWebViewContainer::loadStarted, this, &NHelioCloudDocsPage::onLoadStarted);
    connect(this, &NHelioCloudDocsPage::sigNotifyNameChange, m_jsObj, &NHelioCommonJSAPI::onNotifyNameChange);
}

void NHelioCloudDocsPage::onLoadFinished(bool ok)
{
    const bool blank = browserUrl().compare(QLatin1String("about:blank"), Qt::CaseInsensitive) == 0;
    if (m_preCreation.isAsked && blank)
        return;
    m_telemetry.record(QStringLiteral("load_finished"));
    m_load->setLoadFinished();
    followBrowser(browserUrl());
    updatePageTitle();
    if (m_browser && ok)
        _updateCookies(false);
    setFileSrcFrom(browserUrl());
    Q_EMIT sigLoadFinished(ok);
    m_telemetry.postPerformance(browserUrl());
}

void NHelioCloudDocsPage::updatePageTitle()
{
    const QString title = m_browser ? m_browser->title() : QString();
    NHelioSubPage* subPage = initialSubPage();
    if (title.isEmpty() || !subPage)
        return;
    if (m_takeOver.isPreparedTitle(title) ||
        (m_preCreation.isAsked && title == QLatin1String("about:blank"))) {
        return;
    }
    m_title = title;
    subPage->setWindowTitle(title);
}

void NHelioCloudDocsPage::onLoadError(const QString& url, const QString& message, int code, bool& handled)
{
    Q_UNUSED(handled)
    m_telemetry.postStep(QStringLiteral("load_error"), stage(), *m_load, url, code, message);
}

void NHelioCloudDocsPage::onLoadStart(NxWebViewFrame* frame)
{
    Q_UNUSED(frame)
    m_telemetry.record(QStringLiteral("load_start"));
}

void NHelioCloudDocsPage::onLoadStarted()
{
    m_telemetry.record(QStringLiteral("load_started"));
    m_load->clearWebFileInfo();
}

void NHelioCloudDocsPage::onTitleChanged(const QString& title)
{
    if (!m_browser || title.isEmpty() || title == m_title || !m_load->isLoadFinished())
        return;
    m_title = title;
    NHelioSubPage* subPage = initialSubPage();
    if (!subPage)
        return;
    subPage->setWindowTitle(m_browser->title());
    const NHelioMainWindow* window = mainWindow();
    if (!subPage->workAreaItemId().isEmpty() && window && window->workAreaManager())
        window->workAreaManager()->updateItem(subPage->workAreaItemId());
}

void NHelioCloudDocsPage::onAddressChange(const QString& url)
{
    if (!m_browser || !m_jsObj)
        return;
    if (!followBrowser(url))
        m_load->noteAddress(url);
}

/** Where the browser went by itself is what the page shows from then on. */
bool NHelioCloudDocsPage::followBrowser(const QString& url)
{
    if (!m_load->isLeftFor(url))
        return false;
    replaceLoad(LoadReason::Navigation,
                [&url](NDocumentLoad& load, const NDocumentLoad& earlier) { load.adopt(url, earlier); });
    return true;
}

void NHelioCloudDocsPage::onFaviconChange(const QList<QIcon>& icons)
{
    Q_UNUSED(icons)
    if (NHelioSubPage* subPage = initialSubPage())
        subPage->refreshIcon();
}

void NHelioCloudDocsPage::onLinkClicked(const QString& url)
{
    if (url.isEmpty() || !m_browser || !nconfigvalues::isVersionCheckOn())
        return;
    QUrl document(url);
    if (!docsurl::isDocumentUrl(document))
        return;
    docsurl::removeQueryItems(document, {QStringLiteral("officeType")});
    tell(document.toString(QUrl::FullyEncoded), LoadReason::Link);
    m_browser->setProperty("linkClickedNotHandle", true);
}

QString NHelioCloudDocsPage::reloadUrlFor(const QString& reason) const
{
    const QString startup = startupUrl();
    return docsurl::reloadUrl(startup.isEmpty() ? m_load->url() : startup, reason, nclock::nowMs());
}

/** Loads the same document again; without a URL to load, the fallback is shown (nothing for an empty one). */
void NHelioCloudDocsPage::reload(LoadReason reason, const QString& reasonText, const QUrl& fallback)
{
    if (!m_browser || m_load->isHeldBack()) // what is not shown yet comes all the same
        return;
    if (m_load->reloadUrl().isEmpty())
        m_load->setReloadUrl(reloadUrlFor(reasonText));
    const QString address = m_load->reloadUrl();
    if (address.isEmpty()) {
        if (!fallback.isEmpty())
            m_load->showInstead(fallback);
        return;
    }
    replaceLoad(reason, [](NDocumentLoad& load, const NDocumentLoad& earlier) { load.repeat(earlier); });
    m_load->showAt(address);
}

QString NHelioCloudDocsPage::serviceStartPage() const
{
    return commandUrlOf(QString());
}

void NHelioCloudDocsPage::onReload()
{
    reload(LoadReason::Reload, QStringLiteral("from"), QUrl(serviceStartPage()));
}

void NHelioCloudDocsPage::onCefProcessAbort()
{
    reload(LoadReason::Crash, QStringLiteral("cefProcessAbort"), errorPage(QStringLiteral("error-cefabort")));
}

void NHelioCloudDocsPage::onLoginStatusChanged()
{
    _updateCookies(true);
    if (m_browser && m_jsObj) {
        if (zeolite::isSupported(accountCapability)) {
            const NHelioApplication* application = NHelioApplication::instance();
            const NHelioAccount* account = application ? application->account() : nullptr;
            if (account && account->isLoggedIn())
                m_browser->reload();
            return;
        }
        reload(LoadReason::LoginChange, QStringLiteral("loginStatusChanged"), QUrl());
    } else if (isReleased()) {
        load();
    }
}

void NHelioCloudDocsPage::onShowOfflinePage()
{
    m_load->showInstead(errorPage(QStringLiteral("error-page")));
}

void NHelioCloudDocsPage::onGotoHomePage()
{
    if (m_browser)
        m_load->showInstead(QUrl(serviceStartPage()));
}

void NHelioCloudDocsPage::_updateCookies(bool force)
{
    if (!m_browser || !m_jsObj)
        return;
    m_cookies.writeAll(*m_browser);
    if (force)
        m_jsObj->notifyLoginStatus();
}

void NHelioCloudDocsPage::slot_beforeBrowser(bool& handled, const QString& url)
{
    Q_UNUSED(handled)
    const QString host = QUrl(url).host();
    if (m_browser && !host.isEmpty() && host.compare(ndomains::mainDomain(), Qt::CaseInsensitive) == 0)
        m_cookies.writeFor(*m_browser, url);
}

void NHelioCloudDocsPage::onAppendResponseCookies(const QList<QNetworkCookie>& cookies)
{
    if (cookies.isEmpty())
        return;
    m_cookies.append(cookies);
    if (m_browser)
        m_cookies.giveReplyCookies(m_browser->webViewContainer(), m_load->url());
}

void NHelioCloudDocsPage::onWebFileReady(const QMap<QString, QString>& info)
{
    m_telemetry.record(QStringLiteral("web_file_ready"));
    m_telemetry.postOpenTime(*m_load);
    Q_EMIT webFileReady(info);
    m_load->onWebFileReady(info);

    const QString fileType = info.value(QStringLiteral("fileType"));
    if (!fileType.isEmpty())
        recordFileTypes(fileType, info.value(QStringLiteral("fileId")));
    if (nrt::kcmc::support(QStringLiteral("PreCreateCloudDocsContainer")))
        NCefPreloadClient::instance().createContainer(NCefPreloadClient::containerName());
    m_telemetry.postStep(QStringLiteral("web_file_ready"), stage(), *m_load, browserUrl());
}

void NHelioCloudDocsPage::recordFileTypes(const QString& fileType, const QString& readyFileId)
{
    if (!readyFileId.isEmpty()) {
        nversioncheckcache::set(readyFileId, fileType);
        if (property("File_ID").toString().isEmpty())
            setProperty("File_ID", readyFileId);
    }
    if (!m_browser)
        return;
    const QString urlFileId = docsurl::fileIdOf(QUrl(m_load->url()));
    if (!urlFileId.isEmpty()) {
        setProperty("URL_File_ID", urlFileId);
        if (urlFileId != readyFileId && m_browser->currentUrl().contains(urlFileId))
            nversioncheckcache::set(urlFileId, fileType);
    }
    NOpenUsageRecord::openOnlineFile().record(m_load->url(), fileType, [](const QString& feature) {
        NCefPreloadClient::instance().recordFeatureUsed(feature);
    });
}

void NHelioCloudDocsPage::onShareDlgReady(const QMap<QString, QString>& info)
{
    Q_UNUSED(info)
    m_telemetry.record(QStringLiteral("share_dlg_ready"));
    m_telemetry.postOpenTime(*m_load);
}

void NHelioCloudDocsPage::onMenuItemDataReady(const QJsonObject& items)
{
    Q_EMIT sig_menuItemDataReady(items);
}

void NHelioCloudDocsPage::onSubPageActived()
{
    if (m_browser)
        m_browser->activate();
}

void NHelioCloudDocsPage::onChromeWidgetWinMessage(uint, uint, uint, uint) {}

void NHelioCloudDocsPage::onNotifyMouseDown() {}
