#pragma once

#include "nheliostat/BrowserControl.h"
#include "nheliostat/DocumentGuard.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/browser/NetErrors.h"

#include <QPointer>
#include <QSet>

#include <memory>

class QDropEvent;
class QGridLayout;
class QWebEnginePage;

namespace nheliostat::browser {

class BrowserEnvironment;
class BrowserToolbar;
class LoadErrorPanel;
class LoadingCover;
class ResourceRegistrations;
class TakeOverWatch;
class WebViewContainer;

/** The browser widget on Qt WebEngine. User-interface thread. */
class WebEngineBrowserWidget final : public NHelioBrowserWidgetBase,
                                     public BrowserControl,
                                     public host::DocumentGuard
{
    Q_OBJECT
public:
    /** Without an environment any more, no web view is made. */
    WebEngineBrowserWidget(BrowserEnvironment& environment, const QString& id, const QString& name,
                           QWidget* parent);
    ~WebEngineBrowserWidget() override;

    /** The browser that made the view, while both last. */
    static WebEngineBrowserWidget* browserOf(const WebViewContainer* view);

    /**
     * The view that `initWebView` takes instead of making one; it becomes this widget's. What is loaded in it
     * stays until something else is loaded.
     */
    void setPreparedView(WebViewContainer* view);
    /** The view goes to another owner. */
    void letGoOfView();

    void setStartupUrl(const QString& url) override;
    void setEnableStartupUrl(bool enable) override;
    void initWebView() override;
    void releaseWebView() override;
    NxWebViewContainer* webViewContainer() const override;
    void load(const QUrl& url) override;
    void navigate(const QString& url) override;
    void reload() override;
    QString currentUrl() const override;
    QString title() const override;
    QIcon favicon() const override { return m_favicon; }
    void setToolbarVisible(bool visible) override;
    void setFlag(int flag, bool on) override;
    void addSupportedProtocol(const QString& scheme) override;
    void markProtocol(const QString& scheme, bool mark) override;
    void setCreateInfo(const NHelioBrowserCreateInfo& info) override;
    void addToStartupPages(const QString& url, const QString& title) override;
    void activate() override;
    bool isDiscardable() const override;
    bool hasActivity() const override;
    void setCookie(const QUrl& url, const QNetworkCookie& cookie,
                   std::function<void(bool)> completion) override;
    void addLocalResourceCache(const QVector<NHelioResourceCacheEntry>& entries) override;
    void setLocalResourceCache(const QVector<NHelioLocalPathPair>& pairs, int providerType) override;
    void removeLocalResourceCache(const QVector<NHelioLocalPathPair>& pairs) override;
    void addLocalFaviconCache(const QVector<NHelioLocalPathPair>& pairs) override;
    void removeLocalFaviconCache(const QVector<NHelioLocalPathPair>& pairs) override;

    void evaluate(const QString& code, int timeoutMs, std::function<void(const Evaluation&)> done) override;
    bool crashRenderer() override;
    QByteArray viewId() const override;

    bool hasDocument() const override;
    bool holdsUnsaved() const override { return m_holdsUnsaved; }
    void askDocument(Done done) override;
    void closeDocument(bool regardless, Done done) override;
    void allowLeaving() override;

    /** Covers the view until the document is reported ready or a load ends. */
    Q_INVOKABLE void onShowWebLoadingWidget(const QString& fileName);
    /** The next load is covered until it ends, unless "skipLoadingWidgetInjection" is set. */
    Q_INVOKABLE void injectLoadingWidgetFlag();

private:
    static void setBrowserOf(WebViewContainer& view, WebEngineBrowserWidget* browser);
    QWebEnginePage* page() const;
    WebViewContainer* takeOrMakeView();
    void watchTakeOver();
    void giveUpTakeOver();
    void wireView();
    void askForScriptObject();
    void announceCreated();
    void loadStartupUrl();
    void beginLoad();
    void endLoad(bool ok);
    void abandonLoad();
    void showAddress(const QString& url);
    void showFailure(const QUrl& url, const NetError& error);
    void takeCrash();
    void takeTitle(const QString& title);
    void takeFavicon(const QList<QIcon>& icons);
    void takeWebFileReady(const QMap<QString, QString>& info);
    void takeUnsavedChanges(bool unsaved);
    void leaveFor(std::function<void()> next);
    void loadNow(const QUrl& url);
    void takeDroppedFiles(QDropEvent* event);
    void openNewWindow(const QUrl& url);
    void openProtocol(const QUrl& url);
    void goBack();
    void goForward();

    QPointer<BrowserEnvironment> m_environment;
    std::shared_ptr<ResourceRegistrations> m_resources;
    NHelioBrowserCreateInfo m_createInfo;
    QMap<int, bool> m_flags;
    QIcon m_favicon;
    QStringList m_supportedProtocols;
    QSet<QString> m_markedProtocols;
    QString m_startupUrl;
    bool m_startupUrlEnabled = true;
    bool m_isCreated = false;  //!< the view takes loads
    bool m_isPrepared = false; //!< the view was made in advance, and goes back
    QUrl m_loadingUrl;         //!< given to `load`, not shown yet; kept for a web view still to come
    bool m_coverNextLoad = false;
    bool m_holdsUnsaved = false;
    bool m_mayLeave = false;           //!< the next load takes the document's place unasked
    bool m_reportedSinceStart = false; //!< about unsaved changes, since a load began
    std::function<void()> m_next;      //!< what waits for the document's leave

    BrowserToolbar* m_toolbar;
    QWidget* m_stage;
    QGridLayout* m_layers;
    LoadingCover* m_cover;
    LoadErrorPanel* m_errorPanel;
    QPointer<WebViewContainer> m_container;
    QPointer<WebViewContainer> m_prepared;
    TakeOverWatch* m_takeOver = nullptr; //!< while the view shows what was loaded in advance
};

} // namespace nheliostat::browser
