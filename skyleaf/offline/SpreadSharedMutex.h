#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <shared_mutex>

/**
 * A read-write lock for data that is read far more often than written, for std::shared_lock and
 * std::unique_lock. Readers of different threads lock different parts of it, so that they do not pass one
 * cache line to and fro; a writer locks all parts.
 */
class SpreadSharedMutex
{
public:
    void lock()
    {
        for (Part& part : m_parts)
            part.mutex.lock();
    }
    void unlock()
    {
        for (Part& part : m_parts)
            part.mutex.unlock();
    }
    void lock_shared() { ownPart().mutex.lock_shared(); }
    void unlock_shared() { ownPart().mutex.unlock_shared(); }

private:
    static constexpr std::size_t partCount = 16;
    static constexpr std::size_t apart = 128; // two cache lines, since processors fetch them in pairs

    struct alignas(apart) Part
    {
        std::shared_mutex mutex;
    };

    /** Threads get the parts in turn. */
    Part& ownPart()
    {
        static std::atomic<std::size_t> threads{0};
        thread_local const std::size_t number = threads++ % partCount;
        return m_parts[number];
    }

    std::array<Part, partCount> m_parts;
};
