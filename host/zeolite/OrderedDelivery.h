#pragma once

#include <algorithm>
#include <atomic>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

/**
 * Brings the items that several threads post into one order and hands each to a recorder and then to the
 * observers, on the posting thread, before `post` returns.
 *
 * An observer may post: its items follow the one it is being given. It must not add or remove observers, nor
 * throw.
 */
template <typename Item>
class OrderedDelivery
{
public:
    using Recorder = std::function<void(Item&)>;
    using Observer = std::function<void(const Item&)>;

    /** `record` is called first, one item at a time, and may complete the item. */
    explicit OrderedDelivery(Recorder record)
        : m_record(std::move(record))
    {
    }

    /** Answers the id by which the observer is removed. */
    int addObserver(Observer observer)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_observers.push_back({++m_lastId, std::move(observer)});
        return m_lastId;
    }

    /** When this returns, the observer is not called any more. */
    void removeObserver(int id)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto isRemoved = [id](const Registration& registration) { return registration.id == id; };
        m_observers.erase(std::remove_if(m_observers.begin(), m_observers.end(), isRemoved),
                          m_observers.end());
    }

    void post(Item item)
    {
        if (m_deliveringThread ==
            std::this_thread::get_id()) { // from an observer: this thread holds the lock
            m_posted.push_back(std::move(item));
            return;
        }
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_deliveringThread = std::this_thread::get_id();
        m_posted.push_back(std::move(item));
        while (!m_posted.empty()) {
            Item next = std::move(m_posted.front());
            m_posted.pop_front();
            deliver(next);
        }
        m_deliveringThread = std::thread::id();
    }

private:
    struct Registration
    {
        int id;
        Observer observer;
    };

    void deliver(Item& item)
    {
        m_record(item);
        for (const Registration& registration : m_observers)
            registration.observer(item);
    }

    const Recorder m_record;
    std::mutex m_mutex;
    std::atomic<std::thread::id> m_deliveringThread{std::thread::id()};
    std::deque<Item> m_posted;
    std::vector<Registration> m_observers;
    int m_lastId = 0;
};
