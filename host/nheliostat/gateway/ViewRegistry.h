#pragma once

#include "gateway/RequestGateway.h"

#include <map>
#include <optional>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <vector>

namespace gateway {

struct RegisteredHandler
{
    std::string urlPrefix;
    NxResourceHandler handler;
};

struct LocalDirectory
{
    std::string urlPrefix;
    std::string directory;
};

/** What one view has registered at one moment; never changed once it can be seen. */
struct ViewRoutes
{
    std::vector<std::shared_ptr<const RegisteredHandler>> handlers; //!< newest first
    std::vector<LocalDirectory> directories;                        //!< longest prefix first

    const LocalDirectory* directoryFor(std::string_view url) const;
};

struct OneTimeReply
{
    QByteArray body;
    QByteArray contentType;
};

/** The path below an origin under which one-time replies are published. */
constexpr std::string_view replyPath = "/.helio/reply/";

/** Whether `url` starts with `prefix`; a prefix that ends with the host does not match a longer host name. */
bool urlStartsWith(std::string_view url, std::string_view prefix);

/** The rest of `url` when it is `prefix` itself or below it, path segments kept whole. */
std::optional<std::string_view> urlBelow(std::string_view url, std::string_view prefix);

/** All views with their handlers, directories and replies. Any thread. */
class ViewRegistry
{
public:
    std::string open();
    void close(const std::string& viewId);

    // A view that is not open makes all of these do nothing.
    void addHandlers(const std::string& viewId, const QVector<GatewayHandler>& handlers);
    void removeHandlers(const std::string& viewId, const QStringList& urlPrefixes);
    void clearHandlers(const std::string& viewId);
    void setDirectory(const std::string& viewId, const std::string& urlPrefix, const std::string& directory);
    void removeDirectory(const std::string& viewId, const std::string& urlPrefix);

    /** The view's registrations as they are now; nullptr for a view that is not open. */
    std::shared_ptr<const ViewRoutes> routes(std::string_view viewId) const;

    /** False when the view is not open. */
    bool publish(const std::string& viewId, const std::string& url, OneTimeReply reply);
    /** Hands the reply out and forgets it. */
    std::optional<OneTimeReply> takeReply(std::string_view viewId, std::string_view url);

private:
    struct View
    {
        std::shared_ptr<const ViewRoutes> routes = std::make_shared<ViewRoutes>();
        std::map<std::string, OneTimeReply, std::less<>> replies;
    };

    /** Replaces the view's routes by a changed copy. The old ones are released outside the lock. */
    template <typename Change>
    void changeRoutes(const std::string& viewId, Change change);

    mutable std::shared_mutex m_mutex;
    std::map<std::string, View, std::less<>> m_views;
};

} // namespace gateway
