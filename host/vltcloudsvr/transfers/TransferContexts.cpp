#include "vltcloudsvr/transfers/TransferContexts.h"

namespace vlt::cloudsvr {

std::optional<qint64> TransferContexts::idOf(const Caller& caller) const
{
    const auto found = m_ids.constFind({caller.userId, caller.apiUrl});
    return found == m_ids.constEnd() ? std::optional<qint64>() : *found;
}

bool TransferContexts::knows(const Caller& caller) const
{
    const auto id = idOf(caller);
    if (!id)
        return false;
    const Caller& known = m_entries.constFind(*id)->caller;
    return known.cookies == caller.cookies && known.resolve == caller.resolve;
}

void TransferContexts::set(qint64 id, const Caller& caller)
{
    m_ids.insert({caller.userId, caller.apiUrl}, id);
    m_entries[id].caller = caller;
}

} // namespace vlt::cloudsvr
