#pragma once

#include <QString>

#include <utility>
#include <variant>

namespace shell {

/** Why something could not be had; the text is for people. */
struct Error
{
    QString text;
};

/** A value, or the reason why there is none. */
template <typename T>
class Result
{
public:
    Result(T value)
        : m_state(std::move(value))
    {
    }
    Result(Error error)
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

} // namespace shell
