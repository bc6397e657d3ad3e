#pragma once

#include "nheliostat/NHelioBrowserPageRoot.h"
#include "zeolite/IWebViewResourceProviderCallback.h"

#include <QIcon>
#include <QMap>
#include <QNetworkCookie>
#include <QPair>
#include <QUrl>
#include <QVector>
#include <QWidget>

#include <functional>

class NxWebViewContainer;

/** A URL prefix and the handler that answers the requests below it. */
using NHelioResourceCacheEntry = QPair<QString, NxResourceHandler>;
/** A URL prefix and the local path that belongs to it. */
using NHelioLocalPathPair = QPair<QString, QString>;

/**
 * The browser widget of the shell: a toolbar and a Chromium web view. User-interface thread.
 *
 * Created without a web view; `initWebView` makes one, and `releaseWebView` frees it again. A new view is
 * announced once, by `webviewCreated`, then `creatingApi`, then `browserCreated`. The first two may come inside
 * `initWebView` or in later turns of the event loop; `browserCreated` always comes in a later turn, and what the
 * browser is asked to load before it is loaded only then: of several URLs the last. An enabled startup URL is
 * loaded then when nothing else was asked for.
 *
 * A handler or directory takes the place of an earlier one of the same prefix.
 *
 * Dynamic properties that it reads: "cachePath", "cookiePath" (directories; before `initWebView`),
 * "skipLoadingWidgetInjection". "startupUrl" is kept by `setStartupUrl`. Invokable:
 * "onShowWebLoadingWidget"(QString file name), "injectLoadingWidgetFlag"().
 */
class NHelioBrowserWidgetBase : public QWidget
{
    Q_OBJECT
public:
    using QWidget::QWidget;

    /** The URL shown when the web view is made. An empty text changes nothing. */
    virtual void setStartupUrl(const QString& url) = 0;
    /** Startup URLs are enabled unless switched off. */
    virtual void setEnableStartupUrl(bool enable) = 0;

    virtual void initWebView() = 0;
    virtual void releaseWebView() = 0;
    /** Null until `initWebView` and after `releaseWebView`. */
    virtual NxWebViewContainer* webViewContainer() const = 0;

    virtual void load(const QUrl& url) = 0;
    virtual void navigate(const QString& url) = 0;
    virtual void reload() = 0;
    /** The URL that is shown or being loaded, fully encoded; empty before the first. */
    virtual QString currentUrl() const = 0;
    virtual QString title() const = 0;
    /** The icon of the page that is shown; null until it has one. */
    virtual QIcon favicon() const = 0;

    virtual void setToolbarVisible(bool visible) = 0;
    virtual void setFlag(int flag, bool on) = 0;
    virtual void addSupportedProtocol(const QString& scheme) = 0;
    virtual void markProtocol(const QString& scheme, bool mark) = 0;
    virtual void setCreateInfo(const NHelioBrowserCreateInfo& info) = 0;
    virtual void addToStartupPages(const QString& url, const QString& title) = 0;
    /** Told that the sub page of the browser became the active one. */
    virtual void activate() = 0;
    /** False when the browser holds something that would be lost. */
    virtual bool isDiscardable() const = 0;
    /** True while a download, a dialog or sound forbids to release the web view. */
    virtual bool hasActivity() const = 0;

    virtual void setCookie(const QUrl& url, const QNetworkCookie& cookie,
                           std::function<void(bool)> completion) = 0;

    /** Handlers per URL prefix, called on browser threads; kept over `releaseWebView`. */
    virtual void addLocalResourceCache(const QVector<NHelioResourceCacheEntry>& entries) = 0;
    /** Serves URL prefixes from local directories. */
    virtual void setLocalResourceCache(const QVector<NHelioLocalPathPair>& pairs, int providerType) = 0;
    virtual void removeLocalResourceCache(const QVector<NHelioLocalPathPair>& pairs) = 0;
    virtual void addLocalFaviconCache(const QVector<NHelioLocalPathPair>& pairs) = 0;
    virtual void removeLocalFaviconCache(const QVector<NHelioLocalPathPair>& pairs) = 0;

Q_SIGNALS:
    void webviewCreated(NxWebViewContainer* container);
    void browserCreated();
    /** Asks for the script object of the view; `*object` stays null for none. Owned by the container. */
    void creatingApi(NxWebViewContainer* container, QObject** object);
    void loadFinished(bool ok);
    void titleChanged(const QString& title);
    void faviconChange(const QList<QIcon>& icons);
    /** The renderer process ended abnormally. */
    void cefProcessAbort();
    /** The script asked to close the window. */
    void windowDestroying();
    void closeBrowserPage(const QString& url);
    /** The user followed a link in the page. */
    void sigLinkClicked(const QString& url);
    /** The web application reports the opened file. */
    void webFileReady(const QMap<QString, QString>& info);
};

/**
 * Asks for a browser widget; `creator` gets it at a later turn of the event loop, `parent` owns it. Nothing
 * comes when either is gone by then. False for a browser type other than 2.
 */
bool CreateHelioBrowserWidget(QWidget* parent, NHelioBrowserCreator* creator, int browserType,
                              const QString& id, const QString& name, int scriptApiFlags);
