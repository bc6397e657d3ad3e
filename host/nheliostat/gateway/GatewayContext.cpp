#include "gateway/GatewayContext.h"

namespace gateway {
namespace {

std::vector<std::string> lowerCaseHosts(const QStringList& hosts)
{
    std::vector<std::string> result;
    for (const QString& host : hosts)
        result.push_back(host.toLower().toStdString());
    return result;
}

} // namespace

GatewayContext::GatewayContext(const GatewayOptions& options)
    : limits(options.limits)
    , tls(lowerCaseHosts(options.interceptedHosts))
    , observer(options.observer)
{
    const std::vector<std::string> hosts = lowerCaseHosts(options.interceptedHosts);
    m_interceptedHosts.insert(hosts.begin(), hosts.end());
    for (auto entry = options.resolve.constBegin(); entry != options.resolve.constEnd(); ++entry)
        m_resolve.emplace(entry.key().toLower().toStdString(), entry.value().toStdString());
}

const std::string* GatewayContext::mappedAddress(const HostPort& endpoint) const
{
    auto entry = m_resolve.find(endpoint.text());
    if (entry == m_resolve.end())
        entry = m_resolve.find(endpoint.host);
    return entry == m_resolve.end() ? nullptr : &entry->second;
}

} // namespace gateway
