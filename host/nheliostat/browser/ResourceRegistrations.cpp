#include "nheliostat/browser/ResourceRegistrations.h"

#include "nheliostat/gateway/RequestGateway.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace nheliostat::browser {

namespace {

template <typename Second>
void removePrefix(QVector<QPair<QString, Second>>& entries, const QString& prefix)
{
    const auto hasPrefix = [&prefix](const QPair<QString, Second>& entry) { return entry.first == prefix; };
    entries.erase(std::remove_if(entries.begin(), entries.end(), hasPrefix), entries.end());
}

QVector<GatewayHandler> gatewayHandlers(const QVector<NHelioResourceCacheEntry>& entries)
{
    QVector<GatewayHandler> handlers;
    handlers.reserve(entries.size());
    for (const NHelioResourceCacheEntry& entry : entries)
        handlers.append({entry.first, entry.second});
    return handlers;
}

} // namespace

void ResourceRegistrations::attach(RequestGateway& gateway, const QByteArray& viewId)
{
    m_gateway = &gateway;
    m_viewId = viewId;
    m_gateway->addHandlers(m_viewId, gatewayHandlers(m_handlers));
    for (const NHelioLocalPathPair& pair : qAsConst(m_directories))
        m_gateway->setLocalDirectory(m_viewId, pair.first, pair.second);
}

void ResourceRegistrations::detach(const QByteArray& viewId)
{
    if (viewId != m_viewId)
        return;
    m_gateway = nullptr;
    m_viewId.clear();
}

void ResourceRegistrations::add(const ResourceRegistrations& other)
{
    addHandlers(other.m_handlers);
    setDirectories(other.m_directories);
    addFavicons(other.m_favicons);
}

void ResourceRegistrations::addHandlers(const QVector<NHelioResourceCacheEntry>& entries)
{
    QStringList prefixes;
    for (const NHelioResourceCacheEntry& entry : entries) {
        removePrefix(m_handlers, entry.first);
        prefixes << entry.first;
    }
    m_handlers += entries;
    if (m_gateway) {
        m_gateway->removeHandlers(m_viewId, prefixes);
        m_gateway->addHandlers(m_viewId, gatewayHandlers(entries));
    }
}

void ResourceRegistrations::setDirectories(const QVector<NHelioLocalPathPair>& pairs)
{
    for (const NHelioLocalPathPair& pair : pairs) {
        removePrefix(m_directories, pair.first);
        if (m_gateway)
            m_gateway->setLocalDirectory(m_viewId, pair.first, pair.second);
    }
    m_directories += pairs;
}

void ResourceRegistrations::remove(const QVector<NHelioLocalPathPair>& pairs)
{
    for (const NHelioLocalPathPair& pair : pairs) {
        removePrefix(m_handlers, pair.first);
        removePrefix(m_directories, pair.first);
        if (m_gateway) {
            m_gateway->removeHandlers(m_viewId, {pair.first});
            m_gateway->removeLocalDirectory(m_viewId, pair.first);
        }
    }
}

void ResourceRegistrations::addFavicons(const QVector<NHelioLocalPathPair>& pairs)
{
    removeFavicons(pairs);
    m_favicons += pairs;
}

void ResourceRegistrations::removeFavicons(const QVector<NHelioLocalPathPair>& pairs)
{
    for (const NHelioLocalPathPair& pair : pairs)
        removePrefix(m_favicons, pair.first);
}

QString ResourceRegistrations::faviconFile(const QString& url) const
{
    const QString path = url.section(QLatin1Char('?'), 0, 0);
    for (const NHelioLocalPathPair& pair : m_favicons) {
        if (!path.startsWith(pair.first))
            continue;
        const QString root = QDir(pair.second).canonicalPath();
        const QString file =
            QFileInfo(pair.second + QLatin1Char('/') + path.mid(pair.first.size())).canonicalFilePath();
        if (!root.isEmpty() && file.startsWith(root + QLatin1Char('/')))
            return file;
    }
    return {};
}

void ResourceRegistrations::clear()
{
    if (m_gateway) {
        m_gateway->clearHandlers(m_viewId);
        for (const NHelioLocalPathPair& pair : qAsConst(m_directories))
            m_gateway->removeLocalDirectory(m_viewId, pair.first);
    }
    m_handlers.clear();
    m_directories.clear();
    m_favicons.clear();
}

} // namespace nheliostat::browser
