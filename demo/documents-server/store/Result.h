#pragma once

#include <optional>
#include <utility>
#include <variant>

#include <QString>

namespace documents {

enum class ErrorCode {
    NotFound,        ///< there is no such document
    Damaged,         ///< the document's file cannot be read as a document
    VersionConflict, ///< the document has moved on since the version that the change was based on
    Invalid,         ///< what was asked for makes no sense; the text says why
    Storage          ///< the file system refused; the former state stands
};

struct Error
{
    ErrorCode code;
    QString text; ///< for people
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

/** Success has no value: nothing, or the reason of the failure. */
using Failure = std::optional<Error>;

} // namespace documents
