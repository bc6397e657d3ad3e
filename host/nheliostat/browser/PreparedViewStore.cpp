#include "nheliostat/browser/PreparedViewStore.h"

#include "nheliostat/browser/BrowserEnvironment.h"
#include "nheliostat/browser/ResourceRegistrations.h"
#include "nheliostat/browser/WebEngineBrowserWidget.h"
#include "nheliostat/browser/WebViewContainer.h"

#include <QWebEnginePage>

namespace nheliostat {

namespace {

host::PreparedViews*& registered()
{
    static host::PreparedViews* views = nullptr;
    return views;
}

} // namespace

host::PreparedViews* host::preparedViews()
{
    return registered();
}

void host::setPreparedViews(PreparedViews* views)
{
    registered() = views;
}

namespace browser {

namespace {

/** Until a browser shows it, a view is as large as a usual window, so that its page lays out once. */
constexpr QSize waitingSize(1280, 800);

WebViewContainer* own(NxWebViewContainer* view)
{
    return qobject_cast<WebViewContainer*>(view);
}

} // namespace

PreparedViewStore::PreparedViewStore(BrowserEnvironment& environment)
    : m_environment(environment)
{
    host::setPreparedViews(this);
}

PreparedViewStore::~PreparedViewStore()
{
    host::setPreparedViews(nullptr);
}

NxWebViewContainer* PreparedViewStore::make(QWidget* holder, Listener listener)
{
    QWebEngineProfile* const profile = m_environment.lastKeptProfile();
    if (!profile)
        return nullptr;
    auto* const view =
        new WebViewContainer(m_environment, profile, std::make_shared<ResourceRegistrations>(), holder);
    view->resize(waitingSize);
    listen(view, std::move(listener));
    return view;
}

void PreparedViewStore::listen(WebViewContainer* view, Listener listener)
{
    QObject::connect(view, &WebViewContainer::loadEnded, view, std::move(listener.loaded));
    // Queued: whoever hears of it destroys the view.
    QObject::connect(view, &WebViewContainer::crashed, view, std::move(listener.gone), Qt::QueuedConnection);
}

void PreparedViewStore::serve(NxWebViewContainer* view, const QVector<NHelioLocalPathPair>& directories)
{
    if (WebViewContainer* const mine = own(view))
        mine->resources()->setDirectories(directories);
}

void PreparedViewStore::load(NxWebViewContainer* view, const QUrl& url)
{
    WebViewContainer* const mine = own(view);
    if (mine && mine->page())
        mine->page()->load(url);
}

void PreparedViewStore::wipe(NxWebViewContainer* view, QWidget* holder, Listener listener)
{
    WebViewContainer* const mine = own(view);
    if (!mine)
        return;
    if (WebEngineBrowserWidget* const browser = WebEngineBrowserWidget::browserOf(mine))
        browser->letGoOfView();
    mine->wipe();
    mine->setParent(holder);
    mine->resize(waitingSize);
    listen(mine, std::move(listener));
}

qint64 PreparedViewStore::renderer(const NxWebViewContainer* view) const
{
    const auto* const mine = qobject_cast<const WebViewContainer*>(view);
    return mine && mine->page() ? mine->page()->renderProcessPid() : 0;
}

NHelioBrowserWidgetBase* PreparedViewStore::makeBrowser(QWidget* parent, const QString& id,
                                                        const QString& name, NxWebViewContainer* view)
{
    auto* const browser = new WebEngineBrowserWidget(m_environment, id, name, parent);
    if (WebViewContainer* const mine = own(view)) {
        mine->disconnect();
        browser->setPreparedView(mine);
        browser->setEnableStartupUrl(false);
    }
    return browser;
}

} // namespace browser
} // namespace nheliostat
