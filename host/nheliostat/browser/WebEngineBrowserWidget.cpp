#include "nheliostat/browser/WebEngineBrowserWidget.h"

#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioCommonJSAPI.h"
#include "nheliostat/NHelioScriptIpcEvent.h"
#include "nheliostat/browser/BrowserEnvironment.h"
#include "nheliostat/browser/BrowserToolbar.h"
#include "nheliostat/browser/LoadErrorPanel.h"
#include "nheliostat/browser/LoadingCover.h"
#include "nheliostat/browser/ResourceRegistrations.h"
#include "nheliostat/browser/StartupPages.h"
#include "nheliostat/browser/TakeOverWatch.h"
#include "nheliostat/browser/WebViewContainer.h"
#include "zeolite/NxLoggerLite.h"

#include <QCoreApplication>
#include <QDropEvent>
#include <QTimer>
#include <QVBoxLayout>
#include <QWebEngineHistory>
#include <QWebEnginePage>

namespace nheliostat::browser {

namespace {

const QString logTag = QStringLiteral("Browser");

QWidget* pageAround(QWidget* widget)
{
    for (QWidget* parent = widget->parentWidget(); parent; parent = parent->parentWidget()) {
        if (qobject_cast<NHelioPage*>(parent))
            return parent;
    }
    return widget->parentWidget();
}

} // namespace

WebEngineBrowserWidget::WebEngineBrowserWidget(BrowserEnvironment& environment, const QString& id,
                                               const QString& name, QWidget* parent)
    : NHelioBrowserWidgetBase(parent)
    , m_environment(&environment)
    , m_resources(std::make_shared<ResourceRegistrations>())
    , m_toolbar(new BrowserToolbar(this))
    , m_stage(new QWidget(this))
    , m_layers(new QGridLayout(m_stage))
    , m_cover(new LoadingCover(m_stage))
    , m_errorPanel(new LoadErrorPanel(m_stage))
{
    setObjectName(QStringLiteral("browserWidget"));
    m_createInfo.id = id;
    m_createInfo.name = name;
    m_toolbar->hide();
    m_layers->setContentsMargins(0, 0, 0, 0);
    m_layers->addWidget(m_cover, 0, 0);
    m_layers->addWidget(m_errorPanel, 0, 0);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_toolbar);
    column->addWidget(m_stage, 1);

    connect(m_toolbar, &BrowserToolbar::backRequested, this, &WebEngineBrowserWidget::goBack);
    connect(m_toolbar, &BrowserToolbar::forwardRequested, this, &WebEngineBrowserWidget::goForward);
    connect(m_toolbar, &BrowserToolbar::reloadRequested, this, &WebEngineBrowserWidget::reload);
    connect(m_toolbar, &BrowserToolbar::addressEntered, this, &WebEngineBrowserWidget::navigate);
    connect(m_errorPanel, &LoadErrorPanel::retryRequested, this, &WebEngineBrowserWidget::load);
    connect(this, &NHelioBrowserWidgetBase::webFileReady, m_cover, &QWidget::hide);
}

WebEngineBrowserWidget::~WebEngineBrowserWidget()
{
    if (!m_container)
        return;
    m_container->disconnect(this);
    // A view that was moved elsewhere lives on.
    if (isAncestorOf(m_container))
        delete m_container;
}

void WebEngineBrowserWidget::setStartupUrl(const QString& url)
{
    if (url.isEmpty())
        return;
    m_startupUrl = url;
    setProperty("startupUrl", url);
    if (m_takeOver && url.startsWith(QLatin1String("http"), Qt::CaseInsensitive))
        m_takeOver->expect();
}

void WebEngineBrowserWidget::setEnableStartupUrl(bool enable)
{
    m_startupUrlEnabled = enable;
}

void WebEngineBrowserWidget::initWebView()
{
    if (m_container)
        return;
    if (!m_environment) {
        NxLoggerLite::writeWarning(logTag, QStringLiteral("no browser environment"));
        return;
    }
    m_container = takeOrMakeView();
    setBrowserOf(*m_container, this);
    m_container->setSupportedProtocols(m_supportedProtocols);
    m_layers->addWidget(m_container, 0, 0);
    m_container->show();
    m_container->lower();
    setFocusProxy(m_container);
    wireView();

    Q_EMIT webviewCreated(m_container);
    askForScriptObject();
    // A browser is there a moment later than its view; what is asked of it before waits for that.
    QTimer::singleShot(0, m_container, [this] { announceCreated(); });
}

void WebEngineBrowserWidget::announceCreated()
{
    Q_EMIT browserCreated();
    if (!page())
        return;
    m_isCreated = true;
    if (m_loadingUrl.isEmpty())
        loadStartupUrl();
    else
        page()->load(m_loadingUrl);
}

void WebEngineBrowserWidget::releaseWebView()
{
    if (!m_container)
        return;
    if (m_takeOver)
        m_takeOver->end();
    // The renderer goes at the next turn: this may be called from inside one of its questions.
    m_container->disconnect(this);
    setBrowserOf(*m_container, nullptr);
    m_container->hide();
    m_resources->detach(m_container->viewId());
    m_container->destroyLater();
    m_container.clear();
    m_isCreated = false;
    m_holdsUnsaved = false;
    m_mayLeave = false;
    m_loadingUrl.clear();
    m_cover->hide();
    m_errorPanel->hide();
    m_toolbar->setAddress(QString());
    m_toolbar->setHistory(false, false);
}

NxWebViewContainer* WebEngineBrowserWidget::webViewContainer() const
{
    return m_container;
}

void WebEngineBrowserWidget::load(const QUrl& url)
{
    if (!url.isValid() || url.isEmpty()) {
        NxLoggerLite::writeWarning(logTag, QStringLiteral("not a URL to load: ") + url.toString().left(500));
        return;
    }
    leaveFor([this, url] { loadNow(url); });
}

void WebEngineBrowserWidget::loadNow(const QUrl& url)
{
    m_loadingUrl = url;
    m_errorPanel->hide();
    if (m_takeOver)
        m_takeOver->end();
    if (page() && m_isCreated)
        page()->load(url);
}

void WebEngineBrowserWidget::navigate(const QString& url)
{
    load(QUrl::fromUserInput(url));
}

void WebEngineBrowserWidget::reload()
{
    if (m_errorPanel->isVisibleTo(m_stage))
        load(m_errorPanel->url());
    else if (page())
        leaveFor([this] {
            if (page())
                page()->triggerAction(QWebEnginePage::Reload);
        });
}

QString WebEngineBrowserWidget::currentUrl() const
{
    if (!m_loadingUrl.isEmpty() || !page())
        return m_loadingUrl.toString(QUrl::FullyEncoded);
    return page()->url().toString(QUrl::FullyEncoded);
}

QString WebEngineBrowserWidget::title() const
{
    return page() ? page()->title() : QString();
}

void WebEngineBrowserWidget::setToolbarVisible(bool visible)
{
    m_toolbar->setVisible(visible);
}

void WebEngineBrowserWidget::setFlag(int flag, bool on)
{
    m_flags.insert(flag, on);
}

void WebEngineBrowserWidget::addSupportedProtocol(const QString& scheme)
{
    m_supportedProtocols << scheme.toLower();
    m_supportedProtocols.removeDuplicates();
    if (m_container)
        m_container->setSupportedProtocols(m_supportedProtocols);
}

void WebEngineBrowserWidget::markProtocol(const QString& scheme, bool mark)
{
    if (mark)
        m_markedProtocols.insert(scheme.toLower());
    else
        m_markedProtocols.remove(scheme.toLower());
}

void WebEngineBrowserWidget::setCreateInfo(const NHelioBrowserCreateInfo& info)
{
    m_createInfo = info;
}

void WebEngineBrowserWidget::addToStartupPages(const QString& url, const QString& title)
{
    if (m_environment && !addStartupPage(m_environment->setup().startupPagesFile, {url, title}))
        NxLoggerLite::writeError(logTag, QStringLiteral("the startup pages cannot be written"));
}

void WebEngineBrowserWidget::activate()
{
    if (m_container)
        m_container->setFocus(Qt::OtherFocusReason);
}

void WebEngineBrowserWidget::setCookie(const QUrl& url, const QNetworkCookie& cookie,
                                       std::function<void(bool)> completion)
{
    if (m_container)
        m_container->setCookie(url, cookie, std::move(completion));
    else if (completion)
        completion(false);
}

void WebEngineBrowserWidget::addLocalResourceCache(const QVector<NHelioResourceCacheEntry>& entries)
{
    m_resources->addHandlers(entries);
}

void WebEngineBrowserWidget::setLocalResourceCache(const QVector<NHelioLocalPathPair>& pairs, int)
{
    m_resources->setDirectories(pairs);
}

void WebEngineBrowserWidget::removeLocalResourceCache(const QVector<NHelioLocalPathPair>& pairs)
{
    m_resources->remove(pairs);
}

void WebEngineBrowserWidget::addLocalFaviconCache(const QVector<NHelioLocalPathPair>& pairs)
{
    m_resources->addFavicons(pairs);
}

void WebEngineBrowserWidget::removeLocalFaviconCache(const QVector<NHelioLocalPathPair>& pairs)
{
    m_resources->removeFavicons(pairs);
}

void WebEngineBrowserWidget::evaluate(const QString& code, int timeoutMs,
                                      std::function<void(const Evaluation&)> done)
{
    if (m_container)
        m_container->evaluate(code, timeoutMs, std::move(done));
    else
        done({QJsonValue(), QStringLiteral("there is no document")});
}

bool WebEngineBrowserWidget::crashRenderer()
{
    return m_container && m_container->crashRenderer();
}

QByteArray WebEngineBrowserWidget::viewId() const
{
    return m_container ? m_container->viewId() : QByteArray();
}

void WebEngineBrowserWidget::onShowWebLoadingWidget(const QString& fileName)
{
    m_cover->showFor(fileName);
}

void WebEngineBrowserWidget::injectLoadingWidgetFlag()
{
    m_coverNextLoad = true;
}

QWebEnginePage* WebEngineBrowserWidget::page() const
{
    return m_container ? m_container->page() : nullptr;
}

void WebEngineBrowserWidget::wireView()
{
    WebViewContainer* const view = m_container;
    if (m_takeOver) {
        connect(view, &WebViewContainer::scriptRun, m_takeOver, &TakeOverWatch::noteScript);
        connect(view, &WebViewContainer::messageCame, m_takeOver, &TakeOverWatch::noteAnswer);
    }
    connect(view, &NxWebViewContainer::loadStarted, this, &WebEngineBrowserWidget::beginLoad);
    connect(view, &NxWebViewContainer::addressChange, this, &WebEngineBrowserWidget::showAddress);
    connect(view, &NxWebViewContainer::faviconChange, this, &WebEngineBrowserWidget::takeFavicon);
    connect(view, &WebViewContainer::linkClicked, this, &NHelioBrowserWidgetBase::sigLinkClicked);
    connect(view, &WebViewContainer::protocolRequested, this, &WebEngineBrowserWidget::openProtocol);
    connect(view, &WebViewContainer::newWindowRequested, this, &WebEngineBrowserWidget::openNewWindow);
    connect(view, &WebViewContainer::filesDropped, this, &WebEngineBrowserWidget::takeDroppedFiles);
    connect(view, &WebViewContainer::loadFailed, this, &WebEngineBrowserWidget::showFailure);
    connect(view, &WebViewContainer::loadEnded, this, &WebEngineBrowserWidget::endLoad);
    connect(view, &WebViewContainer::loadAbandoned, this, &WebEngineBrowserWidget::abandonLoad);
    // Queued: whoever hears of a crash may load or release the view.
    connect(view, &WebViewContainer::crashed, this, &WebEngineBrowserWidget::takeCrash, Qt::QueuedConnection);
    connect(page(), &QWebEnginePage::titleChanged, this, &WebEngineBrowserWidget::takeTitle);
    connect(view, &WebViewContainer::closedByItself, this, &NHelioBrowserWidgetBase::windowDestroying);
}

void WebEngineBrowserWidget::askForScriptObject()
{
    QObject* object = nullptr;
    Q_EMIT creatingApi(m_container, &object);
    if (!m_container) {
        delete object;
        return;
    }
    m_container->setScriptObject(object);
    auto* const api = qobject_cast<NHelioCommonJSAPI*>(object);
    if (!api)
        return;
    connect(api, &NHelioCommonJSAPI::sig_webFileReady, this, &WebEngineBrowserWidget::takeWebFileReady);
    connect(api, &NHelioCommonJSAPI::sig_unsavedChanges, this, &WebEngineBrowserWidget::takeUnsavedChanges);
}

void WebEngineBrowserWidget::loadStartupUrl()
{
    // What was loaded in advance is nobody's choice.
    const bool isFree = currentUrl().isEmpty() || (m_takeOver && m_takeOver->isOpen());
    if (m_startupUrlEnabled && !m_startupUrl.isEmpty() && page() && isFree)
        load(QUrl(m_startupUrl));
}

void WebEngineBrowserWidget::beginLoad()
{
    m_reportedSinceStart = false;
    m_errorPanel->hide();
    if (m_takeOver)
        m_takeOver->end();
    if (m_coverNextLoad && !property("skipLoadingWidgetInjection").toBool())
        m_cover->showFor(QString());
    m_coverNextLoad = false;
}

void WebEngineBrowserWidget::endLoad(bool ok)
{
    // A document that says nothing has nothing; what the one before said is over.
    if (!m_reportedSinceStart)
        m_holdsUnsaved = false;
    m_mayLeave = false;
    m_loadingUrl.clear();
    m_cover->hide();
    m_toolbar->setHistory(page()->history()->canGoBack(), page()->history()->canGoForward());
    Q_EMIT loadFinished(ok);
}

void WebEngineBrowserWidget::abandonLoad()
{
    m_mayLeave = false;
    m_loadingUrl.clear();
    m_cover->hide();
    m_toolbar->setAddress(currentUrl());
}

void WebEngineBrowserWidget::showAddress(const QString& url)
{
    m_loadingUrl.clear();
    m_toolbar->setAddress(url);
}

void WebEngineBrowserWidget::showFailure(const QUrl& url, const NetError& error)
{
    NxLoggerLite::writeWarning(
        logTag, QStringLiteral("load failed: %1 %2").arg(error.message, url.toDisplayString().left(500)));
    m_errorPanel->showError(url, error);
}

void WebEngineBrowserWidget::takeCrash()
{
    const QString lastUrl = currentUrl();
    m_holdsUnsaved = false;
    m_loadingUrl.clear();
    m_cover->hide();
    if (m_takeOver)
        m_takeOver->end();
    NxLoggerLite::writeError(logTag, QStringLiteral("the renderer process ended"));
    NHelioApplication* const application = NHelioApplication::instance();
    if (application && application->scriptIpcEventHub())
        QCoreApplication::postEvent(application->scriptIpcEventHub(),
                                    new NHelioScriptIpcEvent(NHelioScriptIpcEvent::browserException));
    const QPointer<WebEngineBrowserWidget> self(this);
    Q_EMIT cefProcessAbort();
    if (self && m_container && m_loadingUrl.isEmpty())
        m_errorPanel->showCrash(QUrl(lastUrl));
}

void WebEngineBrowserWidget::takeTitle(const QString& title)
{
    Q_EMIT titleChanged(title);
}

void WebEngineBrowserWidget::takeFavicon(const QList<QIcon>& icons)
{
    m_favicon = icons.isEmpty() ? QIcon() : icons.first();
    Q_EMIT faviconChange(icons);
}

void WebEngineBrowserWidget::takeWebFileReady(const QMap<QString, QString>& info)
{
    if (m_takeOver && m_takeOver->isOpen()) {
        m_takeOver->end();
        Q_EMIT loadFinished(true); // of what was loaded in advance: it is a page's only now
    }
    Q_EMIT webFileReady(info);
}

void WebEngineBrowserWidget::takeDroppedFiles(QDropEvent* event)
{
    // Past QApplication::notify, which would bring a drop back to the widget under the pointer.
    if (QObject* const receiver = pageAround(this))
        receiver->event(event);
}

void WebEngineBrowserWidget::openNewWindow(const QUrl& url)
{
    if (m_environment)
        m_environment->openNewPage(this, m_createInfo.pageFactory, url);
}

void WebEngineBrowserWidget::openProtocol(const QUrl& url)
{
    if (m_environment)
        m_environment->openProtocol(this, url, m_markedProtocols.contains(url.scheme()));
}

void WebEngineBrowserWidget::goBack()
{
    if (page())
        page()->triggerAction(QWebEnginePage::Back);
}

void WebEngineBrowserWidget::goForward()
{
    if (page())
        page()->triggerAction(QWebEnginePage::Forward);
}

} // namespace nheliostat::browser
