#include "support/FakeBrowserWidget.h"

#include "nheliostat/NHelioCommonJSAPI.h"

#include <QJsonObject>
#include <QTimer>

#include <algorithm>

namespace {

void removeHandler(QVector<NHelioResourceCacheEntry>& handlers, const QString& prefix)
{
    const auto isOfPrefix = [&prefix](const NHelioResourceCacheEntry& entry) {
        return entry.first == prefix;
    };
    handlers.erase(std::remove_if(handlers.begin(), handlers.end(), isOfPrefix), handlers.end());
}

} // namespace

FakeBrowserWidget::FakeBrowserWidget(QWidget* parent, QString browserId, QString browserName)
    : NHelioBrowserWidgetBase(parent)
    , id(std::move(browserId))
    , name(std::move(browserName))
{
}

void FakeBrowserWidget::setStartupUrl(const QString& url)
{
    if (url.isEmpty())
        return;
    startupUrls.append(url);
    setProperty("startupUrl", url);
}

void FakeBrowserWidget::initWebView()
{
    if (m_container)
        return;
    ++webViewsMade;
    m_container = new FakeWebViewContainer(this);
    if (announcesLater) {
        QTimer::singleShot(0, m_container, [this] { announceView(); });
        return;
    }
    Q_EMIT webviewCreated(m_container);
    askForScriptObject();
    QTimer::singleShot(0, m_container, [this] { announceBrowser(); });
}

void FakeBrowserWidget::announceView()
{
    Q_EMIT webviewCreated(m_container);
    QTimer::singleShot(0, m_container, [this] {
        askForScriptObject();
        QTimer::singleShot(0, m_container, [this] { announceBrowser(); });
    });
}

void FakeBrowserWidget::askForScriptObject()
{
    QObject* object = nullptr;
    Q_EMIT creatingApi(m_container, &object);
    m_scriptObject = object;
    if (object && !object->parent())
        object->setParent(m_container);
    if (const auto* api = qobject_cast<NHelioCommonJSAPI*>(object))
        connect(api, &NHelioCommonJSAPI::sig_webFileReady, this, &FakeBrowserWidget::webFileReady);
}

void FakeBrowserWidget::announceBrowser()
{
    Q_EMIT browserCreated();
    if (!m_container)
        return;
    m_isCreated = true;
    const QString startupUrl = property("startupUrl").toString();
    if (!m_currentUrl.isEmpty())
        loads.append(m_currentUrl);
    else if (startupUrlEnabled && !startupUrl.isEmpty())
        load(QUrl(startupUrl));
}

void FakeBrowserWidget::releaseWebView()
{
    if (!m_container)
        return;
    ++webViewsReleased;
    m_currentUrl.clear();
    m_isCreated = false;
    delete m_container;
}

void FakeBrowserWidget::load(const QUrl& url)
{
    if (!url.isValid() || url.isEmpty())
        return;
    m_currentUrl = url;
    if (m_isCreated)
        loads.append(url);
}

void FakeBrowserWidget::navigate(const QString& url)
{
    navigations.append(url);
    m_currentUrl = QUrl(url);
}

void FakeBrowserWidget::addLocalResourceCache(const QVector<NHelioResourceCacheEntry>& entries)
{
    for (const NHelioResourceCacheEntry& entry : entries) {
        removeHandler(resourceCache, entry.first);
        resourceCache.append(entry);
    }
}

void FakeBrowserWidget::setCookie(const QUrl& url, const QNetworkCookie& cookie,
                                  std::function<void(bool)> completion)
{
    cookies.push_back({url, cookie, std::move(completion)});
}

void FakeBrowserWidget::setLocalResourceCache(const QVector<NHelioLocalPathPair>& pairs, int providerType)
{
    resourcePaths += pairs;
    resourceProviderTypes.append(providerType);
}

void FakeBrowserWidget::removeLocalResourceCache(const QVector<NHelioLocalPathPair>& pairs)
{
    for (const NHelioLocalPathPair& pair : pairs) {
        resourcePaths.removeAll(pair);
        removeHandler(resourceCache, pair.first);
    }
}

void FakeBrowserWidget::removeLocalFaviconCache(const QVector<NHelioLocalPathPair>& pairs)
{
    for (const NHelioLocalPathPair& pair : pairs)
        faviconPaths.removeAll(pair);
}

void FakeBrowserWidget::deliverLoadStarted()
{
    if (m_container)
        Q_EMIT m_container->loadStarted();
}

void FakeBrowserWidget::deliverLoadFinished(bool ok)
{
    Q_EMIT loadFinished(ok);
}

void FakeBrowserWidget::deliverTitle(const QString& title)
{
    m_title = title;
    Q_EMIT titleChanged(title);
}

void FakeBrowserWidget::deliverAddress(const QString& url)
{
    m_currentUrl = QUrl(url);
    if (m_container)
        Q_EMIT m_container->addressChange(url);
}

void FakeBrowserWidget::deliverFavicon(const QList<QIcon>& icons)
{
    m_favicon = icons.value(0);
    if (m_container)
        Q_EMIT m_container->faviconChange(icons);
    Q_EMIT faviconChange(icons);
}

bool FakeBrowserWidget::deliverLoadError(const QString& url, const QString& message, int code)
{
    bool handled = false;
    if (m_container)
        Q_EMIT m_container->loadError(url, message, code, handled);
    return handled;
}

bool FakeBrowserWidget::deliverBeforeBrowser(const QString& url)
{
    bool handled = false;
    if (m_container)
        Q_EMIT m_container->beforeBrowser(handled, url);
    return handled;
}

void FakeBrowserWidget::closeDocument(bool regardless, Done done)
{
    closedRegardless.append(regardless);
    closing.push_back(std::move(done));
}

void FakeBrowserWidget::deliverAnswer(Answer answer)
{
    for (const Done& done : std::exchange(questions, {}))
        done(answer);
}

void FakeBrowserWidget::deliverClosed(Answer answer)
{
    for (const Done& done : std::exchange(closing, {}))
        done(answer);
}

void FakeBrowserWidget::deliverCrash()
{
    Q_EMIT cefProcessAbort();
}

void FakeBrowserWidget::deliverWindowDestroying()
{
    Q_EMIT windowDestroying();
}

void FakeBrowserWidget::deliverCloseRequest(const QString& url)
{
    Q_EMIT closeBrowserPage(url);
}

void FakeBrowserWidget::deliverLinkClicked(const QString& url)
{
    Q_EMIT sigLinkClicked(url);
}

void FakeBrowserWidget::deliverCookieStored(std::size_t index, bool stored)
{
    if (cookies.at(index).completion)
        cookies.at(index).completion(stored);
}

bool FakeBrowserWidget::deliverScriptReport(const QString& reportName, const QJsonObject& report)
{
    auto* api = qobject_cast<NHelioCommonJSAPI*>(m_scriptObject);
    return api && api->reportFromScript(reportName, report);
}

void FakeBrowserWidget::deliverScriptCall(const QString& text)
{
    if (auto* object = qobject_cast<NxWebViewAsynJSObject*>(m_scriptObject))
        object->fromJSAsynCall(text);
}

bool FakeBrowserWidget::deliverRequest(const IWebViewResourceProviderCallbackPtr& request) const
{
    QVector<NHelioResourceCacheEntry> asked;
    for (const NHelioResourceCacheEntry& entry : resourceCache) {
        if (request->requestUrl().startsWith(entry.first))
            asked.append(entry);
    }
    std::stable_sort(asked.begin(), asked.end(),
                     [](const auto& a, const auto& b) { return a.first.size() > b.first.size(); });
    return std::any_of(asked.begin(), asked.end(),
                       [&request](const NHelioResourceCacheEntry& entry) { return entry.second(request); });
}
