#pragma once

#include <utility>
#include <variant>

namespace base {

/** A value, or the error that says why there is none. */
template <typename T, typename Error>
class Outcome
{
public:
    Outcome(T value)
        : m_state(std::move(value))
    {
    }
    Outcome(Error error)
        : m_state(std::move(error))
    {
    }

    explicit operator bool() const { return std::holds_alternative<T>(m_state); }
    const T& operator*() const { return std::get<T>(m_state); }
    const T* operator->() const { return &std::get<T>(m_state); }
    const Error& error() const { return std::get<Error>(m_state); }

private:
    std::variant<T, Error> m_state;
};

} // namespace base
