#include "gateway/ViewRegistry.h"

#include "gateway/Credentials.h"

#include <algorithm>
#include <mutex>

namespace gateway {

const LocalDirectory* ViewRoutes::directoryFor(std::string_view url) const
{
    const auto found =
        std::find_if(directories.begin(), directories.end(), [url](const LocalDirectory& entry) {
            return urlBelow(url, entry.urlPrefix).has_value();
        });
    return found == directories.end() ? nullptr : &*found;
}

bool urlStartsWith(std::string_view url, std::string_view prefix)
{
    if (url.substr(0, prefix.size()) != prefix)
        return false;
    const std::size_t host = prefix.find("://");
    const bool hasPath =
        host != std::string_view::npos && prefix.find('/', host + 3) != std::string_view::npos;
    return hasPath || url.size() == prefix.size() || url[prefix.size()] == '/';
}

std::optional<std::string_view> urlBelow(std::string_view url, std::string_view prefix)
{
    if (!urlStartsWith(url, prefix))
        return std::nullopt;
    const std::string_view rest = url.substr(prefix.size());
    const bool atBoundary =
        rest.empty() || prefix.back() == '/' || rest.front() == '/' || rest.front() == '?';
    return atBoundary ? std::optional(rest) : std::nullopt;
}

std::string ViewRegistry::open()
{
    std::string id = randomHex(16);
    const std::unique_lock lock(m_mutex);
    m_views.emplace(id, View());
    return id;
}

void ViewRegistry::close(const std::string& viewId)
{
    decltype(m_views)::node_type released; // handlers may own much: let them go outside the lock
    const std::unique_lock lock(m_mutex);
    released = m_views.extract(viewId);
}

template <typename Change>
void ViewRegistry::changeRoutes(const std::string& viewId, Change change)
{
    std::shared_ptr<const ViewRoutes> released;
    const std::unique_lock lock(m_mutex);
    const auto view = m_views.find(viewId);
    if (view == m_views.end())
        return;
    auto routes = std::make_shared<ViewRoutes>(*view->second.routes);
    change(*routes);
    released = std::exchange(view->second.routes, std::move(routes));
}

void ViewRegistry::addHandlers(const std::string& viewId, const QVector<GatewayHandler>& handlers)
{
    std::vector<std::shared_ptr<const RegisteredHandler>> added;
    for (const GatewayHandler& entry : handlers) {
        if (entry.handler && !entry.urlPrefix.isEmpty()) {
            auto registered = std::make_shared<RegisteredHandler>();
            *registered = {entry.urlPrefix.toStdString(), entry.handler};
            added.insert(added.begin(), std::move(registered));
        }
    }
    changeRoutes(viewId, [&added](ViewRoutes& routes) {
        routes.handlers.insert(routes.handlers.begin(), added.begin(), added.end());
    });
}

void ViewRegistry::removeHandlers(const std::string& viewId, const QStringList& urlPrefixes)
{
    changeRoutes(viewId, [&urlPrefixes](ViewRoutes& routes) {
        const auto removed =
            std::remove_if(routes.handlers.begin(), routes.handlers.end(), [&](const auto& entry) {
                return urlPrefixes.contains(QString::fromStdString(entry->urlPrefix));
            });
        routes.handlers.erase(removed, routes.handlers.end());
    });
}

void ViewRegistry::clearHandlers(const std::string& viewId)
{
    changeRoutes(viewId, [](ViewRoutes& routes) { routes.handlers.clear(); });
}

void ViewRegistry::setDirectory(const std::string& viewId, const std::string& urlPrefix,
                                const std::string& directory)
{
    if (urlPrefix.empty())
        return;
    removeDirectory(viewId, urlPrefix);
    changeRoutes(viewId, [&](ViewRoutes& routes) {
        const auto shorter = std::find_if(
            routes.directories.begin(), routes.directories.end(),
            [&](const LocalDirectory& entry) { return entry.urlPrefix.size() < urlPrefix.size(); });
        routes.directories.insert(shorter, {urlPrefix, directory});
    });
}

void ViewRegistry::removeDirectory(const std::string& viewId, const std::string& urlPrefix)
{
    changeRoutes(viewId, [&urlPrefix](ViewRoutes& routes) {
        const auto removed =
            std::remove_if(routes.directories.begin(), routes.directories.end(),
                           [&](const LocalDirectory& entry) { return entry.urlPrefix == urlPrefix; });
        routes.directories.erase(removed, routes.directories.end());
    });
}

std::shared_ptr<const ViewRoutes> ViewRegistry::routes(std::string_view viewId) const
{
    const std::shared_lock lock(m_mutex);
    const auto view = m_views.find(viewId);
    return view == m_views.end() ? nullptr : view->second.routes;
}

bool ViewRegistry::publish(const std::string& viewId, const std::string& url, OneTimeReply reply)
{
    const std::unique_lock lock(m_mutex);
    const auto view = m_views.find(viewId);
    return view != m_views.end() && view->second.replies.emplace(url, std::move(reply)).second;
}

std::optional<OneTimeReply> ViewRegistry::takeReply(std::string_view viewId, std::string_view url)
{
    const std::unique_lock lock(m_mutex);
    const auto view = m_views.find(viewId);
    if (view == m_views.end())
        return std::nullopt;
    auto& replies = view->second.replies;
    const auto reply = replies.find(url);
    if (reply == replies.end())
        return std::nullopt;
    std::optional<OneTimeReply> taken(std::move(reply->second));
    replies.erase(reply);
    return taken;
}

} // namespace gateway
