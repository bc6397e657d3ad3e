#pragma once

#include "vltcloudsvr/common/Result.h"
#include "vltcloudsvr/transfers/Endpoint.h"

#include <QPair>

#include <optional>

namespace vlt::cloudsvr {

/**
 * For whom this process may work on transfers: those who have called it. What a caller's session needs is
 * known from the last call only. Not guarded against threads.
 */
class TransferContexts
{
public:
    /** Whether exactly this is known already. */
    bool knows(const Caller& caller) const;
    std::optional<qint64> idOf(const Caller& caller) const;
    void set(qint64 id, const Caller& caller);

    QVector<qint64> ids() const { return m_entries.keys().toVector(); }
    Result<Endpoint> endpoint(qint64 id) const { return endpointOf(m_entries.value(id).caller); }

    /** Nothing of the context is begun before that time, in ms since the epoch; 0: at once. */
    qint64 pausedUntil(qint64 id) const { return m_entries.value(id).pausedUntil; }
    void pause(qint64 id, qint64 until) { m_entries[id].pausedUntil = until; }

private:
    struct Entry
    {
        Caller caller;
        qint64 pausedUntil = 0;
    };

    QMap<QPair<QString, QString>, qint64> m_ids; //!< by user and service
    QMap<qint64, Entry> m_entries;
};

} // namespace vlt::cloudsvr
