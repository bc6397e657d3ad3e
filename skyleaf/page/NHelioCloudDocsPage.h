#pragma once

#include "nheliostat/NHelioBrowserPageRoot.h"
#include "offline/IPreloadedReplies.h"
#include "offline/IStorageTransferHost.h"
#include "page/NHelioQuillHyperlinkPageFactory.h"
#include "page/NOpenSteps.h"
#include "proxy/NCloudDocsPageProxyManager.h"
#include "server/NCloudDocsRequestTask.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QJsonObject>
#include <QMap>
#include <QNetworkCookie>
#include <QPointer>
#include <QTimer>
#include <QVector>

#include <memory>

class NHelioBrowserWidgetBase;
class NHelioCentralArea;
class NHelioCloudDocsAsynJsObj;
class NHelioMainWindow;
class NxWebViewContainer;
class NxWebViewFrame;

/**
 * The shell page that shows the documents web application.
 *
 * The shell constructs it, asks it for its sub page, notifies it with what to show, and loads it; later it
 * may release the inactive page and load it again. User-interface thread. Owned by the central area; owns its
 * bridge's life only through the browser widget, which is its child.
 */
class NHelioCloudDocsPage : public NHelioBrowserPageRoot,
                            public IStorageTransferHost,
                            public IPreloadedReplies
{
    Q_OBJECT
public:
    NHelioCloudDocsPage(QWidget* parent, bool createBrowser, bool tryPreloadBrowser);
    ~NHelioCloudDocsPage() override;

    // What the shell asks of its pages.
    int widgetType() const override;
    QString pageTitle() const override;
    bool isDiscardable() const override;
    void releasePage() override;
    bool isReleased() const override;
    bool openFiles(const QStringList& args, const QStringList& names, NHelioProxyStrategy strategy,
                   NHelioSubPage* subPage, const QVariantMap& extra) override;
    bool recoverFiles(const QList<NHelioWorkAreaRecoverItem>& items, int strategy,
                      NHelioSubPage* subPage) override;
    void notify(const QString& text) override;
    void load() override;
    void notifyFocusIn() override;
    NHelioSubPage* createSubPage(NHelioSubPages* subPages) override;
    bool isAlive() const override;
    void updateLastActiveTime() override;
    void handleNotifyParams(const QVariantMap& params) override;
    void setFileSrcFrom(const QString& url) override;

    // What script handlers ask of the page.
    void uploadPackage(const QString& url, const QString& packageInfo, const QString& zipPath) override;
    void downloadPackage(const QString& url, const QString& savePath) override;
    std::optional<NPreloadedReply> preloadedReply(const QString& key) const override;
    QJsonObject openFileRequestBody() const override;
    QList<QPair<QByteArray, QByteArray>> openFileResponseHeaders() const override;

    // By name, from the shell.
    Q_INVOKABLE QString getWorkAreaRecoverUrl() const;
    Q_INVOKABLE QString getCurrentUrl() const;
    Q_INVOKABLE QString startupUrl() const;
    Q_INVOKABLE QString notifyUrl() const;
    Q_INVOKABLE QString getPageProperty(const QString& key) const;
    Q_INVOKABLE void notifyRenameFinish(const QString& name);
    Q_INVOKABLE void navigateTo(const QString& url);
    Q_INVOKABLE void refreshPage();
    Q_INVOKABLE void addToStartupPage();

    void setToolBarVisible(bool visible) { m_toolBarVisible = visible; }
    bool isToolBarVisible() const { return m_toolBarVisible; }
    /** Tells the script that the user chose one of the menu entries that it reported. */
    void notifyMenuItem(const QString& id, const QJsonValue& value);

Q_SIGNALS:
    void sigBrowserCreateSucceeded(NHelioBrowserWidgetBase* browser);
    void sigLoadFinished(bool ok);
    void webFileReady(const QMap<QString, QString>& info);
    void sig_menuItemDataReady(const QJsonObject& data);
    void sigNotifyNameChange(const QString& name);

public Q_SLOTS:
    void refresh();
    void updatePageTitle();

protected:
    void dropEvent(QDropEvent* event) override;
    void setPageTitle(const QString& title) { m_title = title; }
    /** Whether the page was told to show something. */
    bool isInUse() const { return m_loadCalled || !m_notify_URL.isEmpty(); }

private Q_SLOTS:
    // The browser and its web view.
    void onCreateSucceeded(NHelioBrowserWidgetBase* browser);
    void onBrowserCreated();
    void onWebviewCreated(NxWebViewContainer* container);
    void onCreatingApi(NxWebViewContainer* container, QObject** object);
    void onLoadFinished(bool ok);
    void onLoadError(const QString& url, const QString& message, int code, bool& handled);
    void onLoadStart(NxWebViewFrame* frame);
    void onLoadStarted();
    void onTitleChanged(const QString& title);
    void onAddressChange(const QString& url);
    void onFaviconChange(const QList<QIcon>& icons);
    void onLinkClicked(const QString& url);
    void onLoginStatusChanged();
    void onCefProcessAbort();
    void onReload();
    void onShowOfflinePage();
    void onGotoHomePage();
    void onWebFileReady(const QMap<QString, QString>& info);
    void onShareDlgReady(const QMap<QString, QString>& info);
    void onMenuItemDataReady(const QJsonObject& data);
    void onSubPageActived();
    void onChromeWidgetWinMessage(uint message, uint first, uint second, uint third);
    void onNotifyMouseDown();
    void onClose();
    void onCloseBrowserPage(const QString& url);
    void onAppendResponseCookies(const QList<QNetworkCookie>& cookies);
    void slot_beforeBrowser(bool& handled, const QString& url);
    // The server's answers.
    void onRequestTaskFinished(const NCloudDocsRequestTaskResult& result);
    void onStartedPreRequest();
    void onDelayLoadUrl();
    void onVcsResponseTimeout();
    // The page's own timers and its end.
    void onCleanTimeout();
    void onAboutToQuit();

private:
    // Life cycle.
    void fillCreateInfo();
    void createOrTakeBrowser(bool tryPreloadBrowser);
    void _preInit(const QJsonObject& params);
    void preInitDocument(const QString& fileId, const QJsonObject& params);
    void initSelf();
    void noteShownUrl();
    void prepareReload();
    void applyRecoverItem();
    void _loadUrl();
    void showUrl();
    NHelioMainWindow* mainWindow() const;
    QString fileSuffix() const;

    // Notify texts.
    bool _isFilterShareDefaultPage(const QString& text);
    bool handleToolBarCommand(const QString& text);
    bool handleJsonCommand(const QString& text);
    void handleUrlOrCommand(const QString& text);
    QString commandUrlOf(const QString& text);
    void normalizeUrl(const QString& url);
    void openFoundDocument(const struct OpenFilesParams& params, NHelioCentralArea* centralArea,
                           const QVariantMap& extra);
    void applyToolBarVisible();

    // The browser.
    void wireBrowser();
    void wireBridge(NxWebViewContainer* container);
    void connectLoginChange();
    void setBrowserPathsAndFlags();
    void addSupportedProtocols();
    void setUserAgent(NxWebViewContainer* container);
    QString reloadUrlFor(const QString& reason) const;
    void reloadOr(const QString& reason, const QUrl& fallback);
    QString serviceStartPage();
    void recordFileTypes(const QString& fileType, const QString& readyFileId);

    // Front version and server requests.
    void _startNetworkRequest();
    void startRun();
    void _waitStartedPreRequest();
    void _startVcsRequest();
    void ensureRequestTask();
    void connectTaskToBridge();
    NCloudDocsRequestTask& requestTaskForScript();
    NDOPProxyInfo proxyInfo(const QString& frontVer = {}) const;
    void initDocsLocalResource();
    void _updateProxy(const QString& frontVer);
    void _delayLoadUrl();
    bool _isDelayLoadUrl() const;
    bool isLoadHeldBack() const;
    void keepResult(const NCloudDocsRequestTaskResult& result);
    void endVcsWait();
    void loadNormalized();
    void _handleVcs(const NCloudDocsRequestTaskResult& result);
    void _handleVcsWithDelayLoadUrl(const NCloudDocsRequestTaskResult& result);
    void _handleEnvConfig(const NCloudDocsRequestTaskResult& result);
    void _handleEnvConfigWithDelayLoadUrl(const NCloudDocsRequestTaskResult& result);
    void _handleDelayLoadUrlAfterRequest(const QString& frontVer);
    void _refreshOnLocalResourceResetFail();

    // Preloaded browser.
    bool _checkPreloadDocFramework(NxWebViewContainer* container);
    QString preloadFrameworkMismatch(const NxWebViewContainer& container) const;
    void _handlePreloadDocFrameworkWork();
    void offerContainerBack();

    // Cookies.
    void _updateCookies(bool force);
    void _updateCookie(const QString& url);
    void giveResponseCookies(NxWebViewContainer* container);

    // Telemetry.
    void postPrecreateEvent(bool init) const;
    void postOpenStep(const QString& step, const QString& browserUrl, int errorCode = 0,
                      const QString& errorMessage = {}) const;
    void postOpenTime() const;
    void postMemoryRelease(const QString& action) const;
    void postPerformance();

    NHelioCloudDocsAsynJsObj* m_jsObj = nullptr;
    NHelioBrowserWidgetBase* m_browser = nullptr;
    QStringList m_droppedFiles;
    bool m_pendingInitSelf = false;
    QString m_notify_URL;
    bool m_loaded = false;
    bool m_toolBarVisible = false;
    QString m_serviceOrigin;
    bool m_showToolBar = false;
    QString m_reloadUrl;
    QString m_title;
    HelioBrowserPageRecoverContext m_recoverContext;
    QMap<QString, QString> m_webFileInfo;
    bool m_loadFinished = false;
    bool m_networkRequestStarted = false;
    bool m_released = false;
    int m_discardSeconds = 0;
    QMap<QString, NPreloadedReply> m_requestResults;
    QString m_requestResultsFileId; //!< whose results they are
    QVector<qint64> m_openTimePoints;
    QString m_pluginName;
    QString m_officeType;
    QString m_traceId;
    QList<QNetworkCookie> m_responseCookies;
    NOpenSteps m_steps;
    QElapsedTimer m_sinceConstruction;
    qint64 m_loadStartMs = 0;
    QString m_injectId;
    QString m_fileId;
    QString m_connId;
    NHelioQuillHyperlinkPageFactory m_hyperlinkFactory;
    bool m_initByPreloadBrowser = false;
    bool m_reloadAfterDiscard = false;
    QString m_preloadTitle;
    NHelioBrowserCreateInfo m_createInfo;
    std::unique_ptr<NCloudDocsRequestTask> m_requestTask;
    QElapsedTimer m_replyTimer;
    QTimer m_unusedPageTimer;
    QDateTime m_lastActiveTime;
    std::unique_ptr<NCloudDocsPageProxyManager> m_proxyManager;
    bool m_preInited = false;
    QString m_preInitEntry;
    bool m_preInitCalled = false;
    bool m_delayLoadFinished = false;
    std::unique_ptr<QTimer> m_delayLoadTimer;
    QString m_requestedFrontVer;
    bool m_preloadFrameworkChecked = false;
    bool m_preloadFrameworkUsed = false;
    bool m_preloadFrameworkWorkDone = false;
    bool m_vcsRequestStarted = false;
    bool m_waitingForVcs = false;
    std::unique_ptr<QTimer> m_vcsTimeoutTimer;
    QElapsedTimer m_runTimer;
    bool m_webFileReady = false;
    bool m_localResetRefreshed = false;
    bool m_loadCalled = false;
};
