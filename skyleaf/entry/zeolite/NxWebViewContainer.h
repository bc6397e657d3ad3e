#pragma once

#include <QIcon>
#include <QMap>
#include <QNetworkCookie>
#include <QStringList>
#include <QUrl>
#include <QWidget>

#include <functional>

class INxScriptTransport;

/** A frame of the document that a web view shows. Valid during the signal that names it. */
class NxWebViewFrame
{
public:
    virtual ~NxWebViewFrame() = default;
    virtual bool isMain() const = 0;
    virtual QString url() const = 0;
};

/** A Chromium web view. User-interface thread. */
class NxWebViewContainer : public QWidget
{
    Q_OBJECT
public:
    /** Request headers by name; the handler may add and replace. Called for every request of the view. */
    using CustomHeaderHandler = std::function<void(QMap<QByteArray, QByteArray>& headers)>;

    using QWidget::QWidget;

    /** The browser's own user agent, without what a custom header handler adds. */
    virtual QString userAgent() const = 0;
    virtual void setCustomHeaderHandler(CustomHeaderHandler handler) = 0;
    /** `completion` (may be empty) gets whether the cookie was stored. */
    virtual void setCookie(const QUrl& url, const QNetworkCookie& cookie,
                           std::function<void(bool)> completion) = 0;
    /** Runs a script in the main frame. */
    virtual void executeScript(const QString& script) = 0;
    /** Removes all handlers and local directories of the view. */
    virtual void clearLocalResourceCache() = 0;
    virtual void enableDragDrop(bool enable) = 0;
    virtual void setWebViewParent(QWidget* parent) = 0;
    /** Destroys the web view at the next turn of the event loop. */
    virtual void destroyLater() = 0;
    virtual INxScriptTransport& scriptTransport() = 0;

Q_SIGNALS:
    void loadError(const QString& url, const QString& message, int code, bool& handled);
    /** Before the main frame navigates; `handled` = true stops the navigation. */
    void beforeBrowser(bool& handled, const QString& url);
    /** Files are dragged into the view: their local paths. */
    void dragEnter(const QStringList& files);
    void addressChange(const QString& url);
    void faviconChange(const QList<QIcon>& icons);
    /** A frame begins to load. */
    void loadStart(NxWebViewFrame* frame);
    /** The main frame has begun to load. */
    void loadStarted();
};
