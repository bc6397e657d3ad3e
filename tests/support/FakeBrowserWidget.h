#pragma once

#include "nheliostat/DocumentGuard.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "support/FakeWebViewContainer.h"

#include <QPointer>
#include <QStringList>

#include <utility>
#include <vector>

class NxWebViewAsynJSObject;
class QJsonObject;

/**
 * A browser widget without Chromium. Records what it is asked in the public members below; everything that a
 * browser would do by itself happens only in the `deliver…` calls, but for its start, which it announces as
 * the contract says: `browserCreated` a turn of the event loop after the web view was made, and only then
 * does it load. The view's own signals come inside `initWebView` or, with `announcesLater`, in later turns
 * too.
 */
class FakeBrowserWidget final : public NHelioBrowserWidgetBase, public nheliostat::host::DocumentGuard
{
    Q_OBJECT
public:
    struct CookieRequest
    {
        QUrl url;
        QNetworkCookie cookie;
        std::function<void(bool)> completion;
    };

    explicit FakeBrowserWidget(QWidget* parent = nullptr, QString id = {}, QString name = {});

    void setStartupUrl(const QString& url) override;
    void setEnableStartupUrl(bool enable) override { startupUrlEnabled = enable; }
    void initWebView() override;
    void releaseWebView() override;
    NxWebViewContainer* webViewContainer() const override { return m_container; }
    void load(const QUrl& url) override;
    void navigate(const QString& url) override;
    void reload() override { ++reloads; }
    QString currentUrl() const override { return m_currentUrl.toString(QUrl::FullyEncoded); }
    QString title() const override { return m_title; }
    QIcon favicon() const override { return m_favicon; }
    void setToolbarVisible(bool visible) override { toolbarVisible.append(visible); }
    void setFlag(int flag, bool on) override { flags.insert(flag, on); }
    void addSupportedProtocol(const QString& scheme) override { supportedProtocols.append(scheme); }
    void markProtocol(const QString& scheme, bool mark) override { markedProtocols.insert(scheme, mark); }
    void setCreateInfo(const NHelioBrowserCreateInfo& info) override { createInfos.append(info); }
    void addToStartupPages(const QString& url, const QString& title) override
    {
        startupPages.append({url, title});
    }
    void activate() override { ++activations; }
    bool isDiscardable() const override { return discardable; }
    bool hasActivity() const override { return active; }
    void setCookie(const QUrl& url, const QNetworkCookie& cookie,
                   std::function<void(bool)> completion) override;
    /** A handler takes the place of an earlier one of the same prefix. */
    void addLocalResourceCache(const QVector<NHelioResourceCacheEntry>& entries) override;
    void setLocalResourceCache(const QVector<NHelioLocalPathPair>& pairs, int providerType) override;
    void removeLocalResourceCache(const QVector<NHelioLocalPathPair>& pairs) override;
    void addLocalFaviconCache(const QVector<NHelioLocalPathPair>& pairs) override { faviconPaths += pairs; }
    void removeLocalFaviconCache(const QVector<NHelioLocalPathPair>& pairs) override;

    bool hasDocument() const override { return guardsDocument; }
    bool holdsUnsaved() const override { return !discardable; }
    void askDocument(Done done) override { questions.push_back(std::move(done)); }
    void closeDocument(bool regardless, Done done) override;
    void allowLeaving() override { ++leavesAllowed; }

    Q_INVOKABLE void onShowWebLoadingWidget(const QString& fileName) { loadingWidgetFiles.append(fileName); }
    Q_INVOKABLE void injectLoadingWidgetFlag() { ++loadingWidgetFlags; }

    /** Whether it was announced, and loads. */
    bool isCreated() const { return m_isCreated; }
    FakeWebViewContainer* container() const { return m_container; }
    /** The object that answered creatingApi for the present web view; null for none. */
    QObject* scriptObject() const { return m_scriptObject; }

    void deliverLoadStarted();
    void deliverLoadFinished(bool ok);
    void deliverTitle(const QString& title);
    void deliverAddress(const QString& url);
    void deliverFavicon(const QList<QIcon>& icons);
    /** Whether a receiver handled the error. */
    bool deliverLoadError(const QString& url, const QString& message, int code);
    /** Whether a receiver stopped the navigation. */
    bool deliverBeforeBrowser(const QString& url);
    /** The document answers all that asked it. */
    void deliverAnswer(Answer answer);
    /** The document is closed, or objects once more. */
    void deliverClosed(Answer answer);
    void deliverCrash();
    void deliverWindowDestroying();
    void deliverCloseRequest(const QString& url);
    void deliverLinkClicked(const QString& url);
    void deliverCookieStored(std::size_t index, bool stored);
    /** The web application's report; false when the script object does not know it. */
    bool deliverScriptReport(const QString& reportName, const QJsonObject& report);
    /** A call of the page's script: its JSON text. */
    void deliverScriptCall(const QString& text);
    /** Asks the handlers whose prefix the request's URL has, the longest prefix first; false when none took
     * it. */
    bool deliverRequest(const IWebViewResourceProviderCallbackPtr& request) const;

    const QString id;
    const QString name;
    QStringList startupUrls;
    bool startupUrlEnabled = true;
    int webViewsMade = 0;
    int webViewsReleased = 0;
    QVector<QUrl> loads; //!< that reached the engine: of several before the start, the last
    QStringList navigations;
    int reloads = 0;
    int activations = 0;
    QVector<bool> toolbarVisible;
    QMap<int, bool> flags;
    QStringList supportedProtocols;
    QMap<QString, bool> markedProtocols;
    QVector<NHelioBrowserCreateInfo> createInfos;
    QVector<QPair<QString, QString>> startupPages; //!< URL and title
    bool discardable = true;
    bool active = false;
    bool guardsDocument = false; //!< whether it has a document to be asked
    std::vector<Done> questions;
    std::vector<Done> closing;
    QVector<bool> closedRegardless;
    int leavesAllowed = 0;
    std::vector<CookieRequest> cookies;
    QVector<NHelioResourceCacheEntry> resourceCache;
    QVector<NHelioLocalPathPair> resourcePaths;
    QVector<int> resourceProviderTypes;
    QVector<NHelioLocalPathPair> faviconPaths;
    QStringList loadingWidgetFiles;
    int loadingWidgetFlags = 0;

    /** Whether new browsers announce their view in later turns. */
    static inline bool announcesLater = false;

private:
    void announceView();
    void askForScriptObject();
    void announceBrowser();

    QPointer<FakeWebViewContainer> m_container;
    QPointer<QObject> m_scriptObject;
    QUrl m_currentUrl;
    bool m_isCreated = false;
    QString m_title;
    QIcon m_favicon;
};
