#pragma once

#include <optional>

#include <QString>

#include "base/Outcome.h"

namespace documents {

enum class ErrorCode {
    NotFound,        ///< there is no such document, file, folder or upload
    Damaged,         ///< the document's file cannot be read as a document
    VersionConflict, ///< the document has moved on since the version that the change was based on
    Conflict,        ///< what is there already stands in the way
    Invalid,         ///< what was asked for makes no sense; the text says why
    TooLarge,        ///< more bytes than were announced or are allowed
    Sha1Mismatch,    ///< the bytes are not those that were announced
    DiskFull,        ///< no room; the former state stands
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
