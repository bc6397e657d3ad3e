#include "nheliostat/browser/WebViewContainer.h"

#include "nheliostat/browser/BrowserEnvironment.h"
#include "nheliostat/browser/BrowserOrigin.h"
#include "nheliostat/browser/BrowserWebPage.h"
#include "nheliostat/browser/BrowserWebView.h"
#include "nheliostat/browser/DocumentCloser.h"
#include "nheliostat/browser/LoadWatcher.h"
#include "nheliostat/browser/ResourceRegistrations.h"
#include "nheliostat/browser/ScriptEvaluator.h"
#include "nheliostat/browser/ScriptPort.h"
#include "nheliostat/browser/ScriptText.h"
#include "nheliostat/browser/ViewRequestInterceptor.h"
#include "nheliostat/gateway/RequestGateway.h"
#include "zeolite/NxLoggerLite.h"
#include "zeolite/NxWebViewAsynJSObject.h"

#include <QAuthenticator>
#include <QDropEvent>
#include <QVBoxLayout>
#include <QWebChannel>
#include <QWebEngineHistory>
#include <QWebEngineProfile>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>

#include <csignal>

namespace nheliostat::browser {

namespace {

const QString logTag = QStringLiteral("WebView");

class Frame final : public NxWebViewFrame
{
public:
    Frame(bool isMain, const QUrl& url)
        : m_isMain(isMain)
        , m_url(url.toString(QUrl::FullyEncoded))
    {
    }
    bool isMain() const override { return m_isMain; }
    QString url() const override { return m_url; }

private:
    bool m_isMain;
    QString m_url;
};

} // namespace

WebViewContainer::WebViewContainer(BrowserEnvironment& environment, QWebEngineProfile* profile,
                                   std::shared_ptr<ResourceRegistrations> resources, QWidget* parent)
    : NxWebViewContainer(parent)
    , m_environment(environment)
    , m_resources(std::move(resources))
    , m_viewId(environment.gateway().openView())
    , m_port(std::make_unique<ScriptPort>(environment.replyPublisher(m_viewId)))
    , m_channel(std::make_unique<QWebChannel>())
    , m_interceptor(std::make_unique<ViewRequestInterceptor>(m_viewId, profile->httpUserAgent().toUtf8()))
    , m_view(std::make_unique<BrowserWebView>())
{
    setObjectName(QStringLiteral("webViewContainer"));
    BrowserWebPage::Owner owner;
    owner.acceptNavigation = [this](const QUrl& url, QWebEnginePage::NavigationType type, bool isMainFrame) {
        return acceptNavigation(url, type, isMainFrame);
    };
    owner.acceptCertificate = [this](const QWebEngineCertificateError& error) {
        return m_environment.isOwnCertificate(error);
    };
    owner.openNewWindow = [this](const QUrl& url) { Q_EMIT newWindowRequested(url); };
    owner.withoutDialogs = environment.setup().headless;
    m_page = new BrowserWebPage(profile, std::move(owner), m_view.get());
    m_view->setPage(m_page);
    m_page->setUrlRequestInterceptor(m_interceptor.get());
    m_channel->registerObject(QStringLiteral("port"), m_port.get());
    m_page->setWebChannel(m_channel.get());
    insertScriptObject();
    m_loads = std::make_unique<LoadWatcher>(*m_page);
    m_evaluator = std::make_unique<ScriptEvaluator>(*m_page);
    m_closer = std::make_unique<DocumentCloser>(*m_page, *m_evaluator);
    m_resources->attach(environment.gateway(), m_viewId);

    m_view->setObjectName(QStringLiteral("webView"));
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_view.get());
    setFocusProxy(m_view.get());
    wirePage();
    environment.addView(this);
}

WebViewContainer::~WebViewContainer()
{
    endView();
}

void WebViewContainer::wirePage()
{
    connect(m_page, &QWebEnginePage::loadStarted, this, &WebViewContainer::reportLoadStart);
    connect(m_page, &QWebEnginePage::urlChanged, this, &WebViewContainer::reportAddress);
    connect(m_page, &QWebEnginePage::iconChanged, this, &WebViewContainer::reportFavicon);
    connect(m_page, &QWebEnginePage::iconUrlChanged, this, &WebViewContainer::reportLocalFavicon);
    connect(m_page, &QWebEnginePage::renderProcessTerminated, this, &WebViewContainer::takeCrash);
    connect(m_page, &QWebEnginePage::proxyAuthenticationRequired, &m_environment,
            &BrowserEnvironment::answerProxyQuestion);
    connect(m_loads.get(), &LoadWatcher::failed, this, &WebViewContainer::failLoad);
    connect(m_loads.get(), &LoadWatcher::ended, this, &WebViewContainer::endLoad);
    connect(m_loads.get(), &LoadWatcher::abandoned, this, &WebViewContainer::endLeave);
    connect(m_loads.get(), &LoadWatcher::abandoned, this, &WebViewContainer::loadAbandoned);
    connect(m_closer.get(), &DocumentCloser::closedByItself, this, &WebViewContainer::closedByItself);
    connect(m_port.get(), &ScriptPort::messageCame, this, &WebViewContainer::messageCame);
    connect(m_view.get(), &BrowserWebView::filesEntered, this, &WebViewContainer::dragEnter);
    connect(m_view.get(), &BrowserWebView::filesDropped, this, &WebViewContainer::filesDropped);
}

QWebEnginePage* WebViewContainer::page() const
{
    return m_page;
}

void WebViewContainer::endView()
{
    if (!m_page)
        return;
    m_environment.removeView(this);
    m_resources->detach(m_viewId);
    m_closer.reset();
    m_evaluator.reset();
    m_loads.reset();
    m_page->disconnect(this);
    m_page->setWebChannel(nullptr);
    m_page = nullptr;
    m_view.reset();
    m_channel.reset();
    m_interceptor.reset();
    m_port->forgetDocument();
    m_environment.gateway().closeView(m_viewId);
}

void WebViewContainer::wipe()
{
    disconnect();
    setScriptObject(nullptr);
    m_resources->clear();
    setSupportedProtocols({});
    enableDragDrop(false);
    setCustomHeaderHandler({});
    if (m_closer)
        m_closer->endAll();
    if (m_evaluator)
        m_evaluator->abandonOpen(QStringLiteral("the view was given back"));
    if (!m_page)
        return;
    m_page->setAbandoned(true);
    m_page->runJavaScript(QStringLiteral("window.sessionStorage.clear()"),
                          QWebEngineScript::ApplicationWorld);
}

void WebViewContainer::putToUse()
{
    if (!m_page)
        return;
    m_page->setAbandoned(false);
    m_page->history()->clear();
}

void WebViewContainer::setSupportedProtocols(const QStringList& schemes)
{
    m_supportedProtocols = schemes;
}

void WebViewContainer::setScriptObject(QObject* object)
{
    auto* const scriptObject = qobject_cast<NxWebViewAsynJSObject*>(object);
    if (object && !scriptObject)
        NxLoggerLite::writeWarning(logTag, QStringLiteral("not a script object"));
    if (m_scriptObject && m_scriptObject != object)
        m_scriptObject->deleteLater();
    m_scriptObject = object;
    if (object)
        object->setParent(this);
    m_port->setScriptObject(scriptObject);
}

void WebViewContainer::evaluate(const QString& code, int timeoutMs,
                                std::function<void(const BrowserControl::Evaluation&)> done)
{
    if (m_page && !m_page->url().isEmpty())
        m_evaluator->evaluate(code, timeoutMs, std::move(done));
    else
        done({QJsonValue(), QStringLiteral("there is no document")});
}

bool WebViewContainer::crashRenderer()
{
    const qint64 process = m_page ? m_page->renderProcessPid() : 0;
    return process > 0 && kill(static_cast<pid_t>(process), SIGKILL) == 0;
}

bool WebViewContainer::hasDocument() const
{
    return m_page && !m_page->url().isEmpty() && m_page->renderProcessPid() > 0;
}

void WebViewContainer::askDocument(host::DocumentGuard::Done done)
{
    if (hasDocument())
        m_closer->ask(std::move(done));
    else
        done(host::DocumentGuard::Answer::Agrees);
}

void WebViewContainer::closeDocument(bool regardless, host::DocumentGuard::Done done)
{
    if (hasDocument())
        m_closer->close(regardless, std::move(done));
    else
        done(host::DocumentGuard::Answer::Agrees);
}

void WebViewContainer::allowLeaving()
{
    if (m_page)
        m_page->setLeaving(BrowserWebPage::Leaving::Allowed);
}

void WebViewContainer::endLeave()
{
    if (m_page && !m_closer->isClosing())
        m_page->setLeaving(BrowserWebPage::Leaving::Asked);
}

bool WebViewContainer::isBusyWithUser() const
{
    return m_page && (m_page->recentlyAudible() || m_page->hasDialog() || m_closer->isAsking());
}

void WebViewContainer::noteRequest(const GatewayRequestRecord& record)
{
    if (m_loads)
        m_loads->noteRequest(record);
}

QString WebViewContainer::userAgent() const
{
    return m_page ? m_page->profile()->httpUserAgent() : QString();
}

void WebViewContainer::setCustomHeaderHandler(CustomHeaderHandler handler)
{
    if (m_interceptor)
        m_interceptor->setHeaderHandler(std::move(handler));
}

void WebViewContainer::setCookie(const QUrl& url, const QNetworkCookie& cookie,
                                 std::function<void(bool)> completion)
{
    if (m_page)
        m_environment.setCookie(m_page->profile(), url, cookie, std::move(completion));
    else if (completion)
        completion(false);
}

void WebViewContainer::executeScript(const QString& script)
{
    if (!m_page)
        return;
    m_page->runJavaScript(script, QWebEngineScript::MainWorld);
    Q_EMIT scriptRun();
}

void WebViewContainer::clearLocalResourceCache()
{
    m_resources->clear();
}

void WebViewContainer::enableDragDrop(bool enable)
{
    if (m_view)
        m_view->setFileDropEnabled(enable);
}

void WebViewContainer::setWebViewParent(QWidget* parent)
{
    setParent(parent);
}

void WebViewContainer::destroyLater()
{
    deleteLater();
}

INxScriptTransport& WebViewContainer::scriptTransport()
{
    return *m_port;
}

bool WebViewContainer::acceptNavigation(const QUrl& url, QWebEnginePage::NavigationType type,
                                        bool isMainFrame)
{
    const SchemeUse use = schemeUse(url.scheme(), m_supportedProtocols);
    if (use == SchemeUse::HandOver)
        Q_EMIT protocolRequested(url);
    else if (use == SchemeUse::Ignore)
        NxLoggerLite::writeInfo(logTag, QStringLiteral("unknown protocol ignored: ") + url.scheme());
    if (use != SchemeUse::Browser)
        return false;
    if (!isMainFrame) {
        Frame frame(false, url);
        Q_EMIT loadStart(&frame);
        return true;
    }
    const QString text = url.toString(QUrl::FullyEncoded);
    if (type == QWebEnginePage::NavigationTypeLinkClicked)
        Q_EMIT linkClicked(text);
    bool handled = false;
    Q_EMIT beforeBrowser(handled, text);
    if (handled || !m_page)
        return false;
    const QString origin = originOf(url);
    m_port->awaitDocument(m_environment.isScriptOrigin(origin) ? origin : QString());
    return true;
}

void WebViewContainer::insertScriptObject()
{
    // For all documents, once: Chromium may take a frame's scripts before it asks whether to navigate there.
    QWebEngineScript script;
    script.setName(QStringLiteral("helio"));
    script.setInjectionPoint(QWebEngineScript::DocumentCreation);
    script.setWorldId(QWebEngineScript::MainWorld);
    script.setRunsOnSubFrames(false);
    script.setSourceCode(scriptObjectText(m_port->secret(), m_environment.setup().scriptOrigins));
    m_page->scripts().insert(script);
}

void WebViewContainer::reportLoadStart()
{
    Frame frame(true, m_page->requestedUrl());
    Q_EMIT loadStart(&frame);
    Q_EMIT loadStarted();
}

void WebViewContainer::reportAddress(const QUrl& url)
{
    m_port->setShownOrigin(originOf(url));
    Q_EMIT addressChange(url.toString(QUrl::FullyEncoded));
}

void WebViewContainer::reportFavicon(const QIcon& icon)
{
    Q_EMIT faviconChange({icon});
}

void WebViewContainer::reportLocalFavicon(const QUrl& url)
{
    const QString file = m_resources->faviconFile(url.toString(QUrl::FullyEncoded));
    if (!file.isEmpty())
        Q_EMIT faviconChange({QIcon(file)});
}

void WebViewContainer::failLoad(const QUrl& url, const NetError& error)
{
    m_port->forgetDocument();
    bool handled = false;
    Q_EMIT loadError(url.toString(QUrl::FullyEncoded), error.message, error.code, handled);
    if (!handled)
        Q_EMIT loadFailed(url, error);
}

void WebViewContainer::endLoad(bool ok)
{
    endLeave();
    if (m_evaluator)
        m_evaluator->checkOpen();
    if (ok)
        m_port->endHiddenDocument();
    Q_EMIT loadEnded(ok);
}

void WebViewContainer::takeCrash(QWebEnginePage::RenderProcessTerminationStatus status)
{
    if (status == QWebEnginePage::NormalTerminationStatus)
        return;
    m_port->forgetDocument();
    m_loads->forgetLoad();
    m_evaluator->abandonOpen(QStringLiteral("the renderer process ended"));
    m_closer->endAll();
    Q_EMIT crashed();
}

} // namespace nheliostat::browser
