#pragma once

#include <QtGlobal>

#include <functional>
#include <mutex>
#include <optional>
#include <utility>

/** How often the values read once per process were forgotten; only tests raise it. */
namespace nreadonce {

quint64 generation();
void resetForTest();

} // namespace nreadonce

/**
 * A value that does not change while the process runs: read on first use, then kept. Thread-safe.
 * Meant for function-local statics: `static NReadOnce<int> interval(&readInterval); return interval();`
 */
template <typename T>
class NReadOnce
{
public:
    explicit NReadOnce(std::function<T()> read)
        : m_read(std::move(read))
    {
    }

    T operator()()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_value || m_generation != nreadonce::generation()) {
            m_generation = nreadonce::generation();
            m_value = m_read();
        }
        return *m_value;
    }

private:
    std::function<T()> m_read;
    std::mutex m_mutex;
    quint64 m_generation = 0;
    std::optional<T> m_value;
};
