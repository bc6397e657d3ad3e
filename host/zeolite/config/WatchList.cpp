#include "zeolite/config/WatchList.h"

#include <algorithm>

#include <QObject>

namespace {

template <typename Entries, typename Predicate>
void eraseIf(Entries& entries, Predicate predicate)
{
    entries.erase(std::remove_if(entries.begin(), entries.end(), predicate), entries.end());
}

} // namespace

void WatchList::add(Key key, QObject* context, NFpccomb::Watch watch)
{
    if (context && watch)
        m_entries[key].push_back({++m_lastId, context, std::move(watch)});
}

void WatchList::remove(Key key, QObject* context)
{
    eraseIf(m_entries[key], [context](const Entry& entry) { return entry.context == context; });
}

void WatchList::call(Key key)
{
    callAll(key, false);
}

void WatchList::callOnce(Key key)
{
    callAll(key, true);
}

void WatchList::callAll(Key key, bool once)
{
    std::vector<quint64> ids;
    eraseIf(m_entries[key], [](const Entry& entry) { return entry.context.isNull(); });
    for (const Entry& entry : m_entries[key])
        ids.push_back(entry.id);

    for (const quint64 id : ids) {
        std::vector<Entry>& entries = m_entries[key];
        const auto entry =
            std::find_if(entries.begin(), entries.end(), [id](const Entry& other) { return other.id == id; });
        if (entry == entries.end() || entry->context.isNull())
            continue;
        const NFpccomb::Watch watch = entry->watch;
        if (once)
            entries.erase(entry);
        watch(key.first, key.second);
    }
}
