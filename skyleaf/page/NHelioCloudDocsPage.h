#pragma once

#include "nheliostat/NHelioBrowserPageRoot.h"
#include "offline/IPreloadedReplies.h"
#include "offline/IStorageTransferHost.h"
#include "page/NDocumentLoad.h"
#include "page/NHelioQuillHyperlinkPageFactory.h"
#include "page/NOpenTelemetry.h"
#include "page/NPageCookies.h"
#include "page/NTakeOver.h"
#include "proxy/NCloudDocsPageProxyManager.h"
#include "server/NCloudDocsRequestTask.h"

#include <QDateTime>
#include <QJsonObject>
#include <QNetworkCookie>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <memory>

class NHelioBrowserWidgetBase;
class NHelioCentralArea;
class NHelioCloudDocsAsynJsObj;
class NHelioMainWindow;
class NxWebViewContainer;
class NxWebViewFrame;

/** A load that is replaced gives everything up at once, and goes when nobody can be inside it any more. */
struct EndDocumentLoad
{
    void operator()(NDocumentLoad* load) const
    {
        load->end();
        load->deleteLater();
    }
};

/**
 * The shell page that shows the documents web application.
 *
 * The shell constructs it, asks it for its sub page, notifies it with what to show, and loads it; later it
 * may release the inactive page and load it again. What it shows is its load (NDocumentLoad), which every new
 * thing to show replaces. User-interface thread. Owned by the central area; owns its bridge's life only
 * through the browser widget, which is its child.
 */
class NHelioCloudDocsPage : public NHelioBrowserPageRoot,
                            public IStorageTransferHost,
                            public IPreloadedReplies,
                            private IDocumentLoadHost
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
    bool isInUse() const { return m_stage != Stage::Made || !m_load->url().isEmpty(); }

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
    void onOfficeTypeChanged(const QString& officeType);
    void onReplyCame(const QString& name, const QByteArray& body, qint64 startMs, qint64 endMs);
    // The page's own timers and its end.
    void onCleanTimeout();
    void onAboutToQuit();

private:
    // What the load asks of the page.
    NHelioBrowserWidgetBase* loadBrowser() const override { return m_browser; }
    NCloudDocsPageProxyManager& loadProxies() override { return *m_proxyManager; }
    NTakeOver& loadTakeOver() override { return m_takeOver; }
    NOpenTelemetry& loadTelemetry() override { return m_telemetry; }
    QString fileNameSuffix() const override;
    QString pageSuffix() const override;
    void updateUserAgent() override;

    // Life cycle.
    enum class Stage {
        Made,         //!< never asked to load
        AwaitBrowser, //!< to be loaded as soon as the browser exists
        Loaded,
        Released,
    };
    struct PreCreation
    {
        bool isAsked = false; //!< a document was announced
        bool isDone = false;
        QString entry;
    };
    using LoadPtr = std::unique_ptr<NDocumentLoad, EndDocumentLoad>;
    LoadPtr makeLoad(LoadReason reason);
    /** Ends the present load; `fill` tells the new one what it is, with the earlier one still at hand. */
    void replaceLoad(LoadReason reason,
                     const std::function<void(NDocumentLoad& load, const NDocumentLoad& earlier)>& fill);
    /** Whether the URL differs from what the page was told before. */
    bool tell(const QString& url, LoadReason reason);
    void fillCreateInfo();
    void createOrTakeBrowser(bool tryPreloadBrowser);
    void offerContainerBack();
    void _preInit(const QJsonObject& params);
    void preInitDocument(const QString& fileId, const QJsonObject& params);
    void initSelf();
    void comeBack();
    void applyRecoverItem();
    bool hasBrowser() const;
    NHelioMainWindow* mainWindow() const;
    QString fileSuffix() const;

    // Notify texts.
    bool _isFilterShareDefaultPage(const QString& text);
    bool handleToolBarCommand(const QString& text);
    bool handleJsonCommand(const QString& text);
    void handleUrlOrCommand(const QString& text);
    QString commandUrlOf(const QString& text) const;
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
    bool followBrowser(const QString& url);
    QString reloadUrlFor(const QString& reason) const;
    void reload(LoadReason reason, const QString& reasonText, const QUrl& fallback);
    QString serviceStartPage() const;
    void recordFileTypes(const QString& fileType, const QString& readyFileId);
    void _updateCookies(bool force);
    NCloudDocsRequestTask* transfers();
    NOpenTelemetry::PageStage stage() const;
    QString browserUrl() const;

    NHelioCloudDocsAsynJsObj* m_jsObj = nullptr;
    NHelioBrowserWidgetBase* m_browser = nullptr;
    QStringList m_droppedFiles;
    Stage m_stage = Stage::Made;
    bool m_toolBarVisible = false;
    bool m_showToolBar = false;
    QString m_title;
    HelioBrowserPageRecoverContext m_recoverContext;
    int m_discardSeconds = 0;
    QDateTime m_lastActiveTime;
    NHelioQuillHyperlinkPageFactory m_hyperlinkFactory;
    NHelioBrowserCreateInfo m_createInfo;
    PreCreation m_preCreation;
    QTimer m_unusedPageTimer;
    NOpenTelemetry m_telemetry;
    NPageCookies m_cookies;
    NTakeOver m_takeOver;
    QPointer<NCloudDocsRequestTask> m_transfers; //!< of the document's script; the bridge's child
    std::unique_ptr<NCloudDocsPageProxyManager> m_proxyManager;
    LoadPtr m_load; //!< never null
};
