#pragma once

#include <optional>

#include <QString>

#include "base/Outcome.h"

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
using Result = base::Outcome<T, Error>;

/** Success has no value: nothing, or the reason of the failure. */
using Failure = std::optional<Error>;

} // namespace documents
