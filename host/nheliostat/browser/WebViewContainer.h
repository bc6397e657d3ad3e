#pragma once

#include "nheliostat/BrowserControl.h"
#include "nheliostat/DocumentGuard.h"
#include "nheliostat/browser/BrowserWebPage.h"
#include "nheliostat/browser/NetErrors.h"
#include "zeolite/NxWebViewContainer.h"

#include <QPointer>

#include <memory>

class QDropEvent;
class QWebChannel;
struct GatewayRequestRecord;

namespace nheliostat::browser {

class BrowserEnvironment;
class BrowserWebPage;
class BrowserWebView;
class DocumentCloser;
class LoadWatcher;
class ResourceRegistrations;
class ScriptEvaluator;
class ScriptPort;
class ViewRequestInterceptor;

/**
 * A web view: page, script port, gateway view. It may be moved to another parent and outlive its browser
 * widget; the environment ends it at the latest. User-interface thread.
 */
class WebViewContainer final : public NxWebViewContainer
{
    Q_OBJECT
public:
    /** The environment outlives the container, or ends its view before it goes. */
    WebViewContainer(BrowserEnvironment& environment, QWebEngineProfile* profile,
                     std::shared_ptr<ResourceRegistrations> resources, QWidget* parent);
    ~WebViewContainer() override;

    /** Null once the view has ended. */
    QWebEnginePage* page() const;
    QByteArray viewId() const { return m_viewId; }
    /** Shared with the browser that shows the view. */
    const std::shared_ptr<ResourceRegistrations>& resources() const { return m_resources; }
    /** Forgets all that its user gave it, listeners included, as well as the page's session data. */
    void wipe();
    /** Ends page and renderer; afterwards the container is empty and does nothing. */
    void endView();

    /** Somebody looks at the page again. */
    void putToUse();

    void setSupportedProtocols(const QStringList& schemes);
    /** Takes the object that answers the page's calls into its ownership; null for none. */
    void setScriptObject(QObject* object);
    void evaluate(const QString& code, int timeoutMs,
                  std::function<void(const BrowserControl::Evaluation&)> done);
    bool crashRenderer();
    /** Whether a document is shown that can be asked. */
    bool hasDocument() const;
    /** As DocumentGuard says. */
    void askDocument(host::DocumentGuard::Done done);
    void closeDocument(bool regardless, host::DocumentGuard::Done done);
    /** What is loaded next takes the document's place without a question. */
    void allowLeaving();
    /** Whether sound, a dialog or a question about leaving is there for somebody to attend to. */
    bool isBusyWithUser() const;
    /** What the gateway made of a request of this view. */
    void noteRequest(const GatewayRequestRecord& record);

    QString userAgent() const override;
    void setCustomHeaderHandler(CustomHeaderHandler handler) override;
    void setCookie(const QUrl& url, const QNetworkCookie& cookie,
                   std::function<void(bool)> completion) override;
    void executeScript(const QString& script) override;
    void clearLocalResourceCache() override;
    void enableDragDrop(bool enable) override;
    void setWebViewParent(QWidget* parent) override;
    void destroyLater() override;
    INxScriptTransport& scriptTransport() override;

Q_SIGNALS:
    void linkClicked(const QString& url);
    void protocolRequested(const QUrl& url);
    void newWindowRequested(const QUrl& url);
    void filesDropped(QDropEvent* event);
    void loadFailed(const QUrl& url, const nheliostat::browser::NetError& error);
    void loadEnded(bool ok);
    void loadAbandoned();
    void crashed();
    /** The document closed itself. */
    void closedByItself();
    /** A script of the owner runs in the main frame. */
    void scriptRun();
    /** The page's document sent a message. */
    void messageCame();

private:
    void wirePage();
    bool acceptNavigation(const QUrl& url, QWebEnginePage::NavigationType type, bool isMainFrame);
    void insertScriptObject();
    void reportLoadStart();
    void reportAddress(const QUrl& url);
    void reportFavicon(const QIcon& icon);
    void reportLocalFavicon(const QUrl& url);
    void failLoad(const QUrl& url, const NetError& error);
    void endLoad(bool ok);
    void endLeave();
    void takeCrash(QWebEnginePage::RenderProcessTerminationStatus status);

    BrowserEnvironment& m_environment;
    std::shared_ptr<ResourceRegistrations> m_resources;
    QByteArray m_viewId;
    QStringList m_supportedProtocols;
    std::unique_ptr<ScriptPort> m_port;
    QPointer<QObject> m_scriptObject;
    std::unique_ptr<QWebChannel> m_channel;
    std::unique_ptr<ViewRequestInterceptor> m_interceptor;
    std::unique_ptr<BrowserWebView> m_view; //!< its child is the page
    BrowserWebPage* m_page;
    std::unique_ptr<LoadWatcher> m_loads;
    std::unique_ptr<ScriptEvaluator> m_evaluator;
    std::unique_ptr<DocumentCloser> m_closer;
};

} // namespace nheliostat::browser
