#pragma once

#include "zeolite/NFpccomb.h"

#include <QMap>
#include <QPair>
#include <QPointer>

#include <vector>

/**
 * Watches by (group, item), each with the object that it lives with. User-interface thread.
 *
 * A watch may add and remove watches while it is called: removed ones are not called any more, added ones not
 * yet.
 */
class WatchList
{
public:
    using Key = QPair<int, int>;

    void add(Key key, QObject* context, NFpccomb::Watch watch);
    void remove(Key key, QObject* context);
    /** Calls the watches of the key, in the order in which they were added. */
    void call(Key key);
    /** As `call`, each watch for the last time. */
    void callOnce(Key key);

private:
    struct Entry
    {
        quint64 id;
        QPointer<QObject> context;
        NFpccomb::Watch watch;
    };

    void callAll(Key key, bool once);

    QMap<Key, std::vector<Entry>> m_entries;
    quint64 m_lastId = 0;
};
