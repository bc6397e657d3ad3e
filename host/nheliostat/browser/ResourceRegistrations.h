#pragma once

#include "nheliostat/NHelioBrowserWidgetBase.h"

#include <QByteArray>

class RequestGateway;

namespace nheliostat::browser {

/**
 * What a browser widget serves locally. Kept while no web view exists and given to the gateway for each new
 * view. User-interface thread; the handlers themselves are called on browser threads.
 */
class ResourceRegistrations
{
public:
    /** Registers everything for a new view; until its `detach`, changes reach the gateway at once. */
    void attach(RequestGateway& gateway, const QByteArray& viewId);
    /** Does nothing for a view that another one has replaced. */
    void detach(const QByteArray& viewId);

    /** Registers what another one holds, too. */
    void add(const ResourceRegistrations& other);

    /** A prefix that is registered again gets the new handler. */
    void addHandlers(const QVector<NHelioResourceCacheEntry>& entries);
    void setDirectories(const QVector<NHelioLocalPathPair>& pairs);
    /** Removes the handlers and directories of the pairs' prefixes. */
    void remove(const QVector<NHelioLocalPathPair>& pairs);

    void addFavicons(const QVector<NHelioLocalPathPair>& pairs);
    void removeFavicons(const QVector<NHelioLocalPathPair>& pairs);
    /** The existing local file of a favicon, or empty. */
    QString faviconFile(const QString& url) const;

    /** Forgets all handlers and directories, favicons included. */
    void clear();

private:
    RequestGateway* m_gateway = nullptr;
    QByteArray m_viewId;
    QVector<NHelioResourceCacheEntry> m_handlers;
    QVector<NHelioLocalPathPair> m_directories;
    QVector<NHelioLocalPathPair> m_favicons;
};

} // namespace nheliostat::browser
