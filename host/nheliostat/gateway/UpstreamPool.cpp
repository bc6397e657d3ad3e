#include "gateway/UpstreamPool.h"

#include <algorithm>

namespace gateway {
namespace {

constexpr std::ptrdiff_t idlePerOrigin = 6;
constexpr std::size_t idleInAll = 32;

std::string keyOf(const Origin& origin)
{
    return (origin.scheme == Scheme::Https ? 's' : 'p') + origin.endpoint.text();
}

} // namespace

std::shared_ptr<Transport> UpstreamPool::take(const Origin& origin, TimePoint earliest)
{
    const std::string key = keyOf(origin);
    for (auto entry = m_idle.begin(); entry != m_idle.end();) {
        if (entry->key != key || entry->since < earliest) {
            ++entry;
            continue;
        }
        std::shared_ptr<Transport> transport = std::move(entry->transport);
        entry = m_idle.erase(entry);
        // Readable while idle means that the server has closed it, or talks out of turn.
        if (transport->isQuiet())
            return transport;
    }
    return nullptr;
}

void UpstreamPool::give(const Origin& origin, std::shared_ptr<Transport> transport, TimePoint now)
{
    transport->setListener({});
    m_idle.push_front({keyOf(origin), std::move(transport), now});
    const auto sameKey = [&key = m_idle.front().key](const Idle& entry) { return entry.key == key; };
    if (std::count_if(m_idle.begin(), m_idle.end(), sameKey) > idlePerOrigin)
        m_idle.erase(std::next(std::find_if(m_idle.rbegin(), m_idle.rend(), sameKey)).base());
    if (m_idle.size() > idleInAll)
        m_idle.pop_back();
}

void UpstreamPool::expire(TimePoint now)
{
    m_idle.remove_if([this, now](const Idle& entry) { return now - entry.since > m_longest; });
}

} // namespace gateway
