#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "http/HttpMessage.h"

namespace documents {

/**
 * Takes a request's body piece by piece as it arrives, so that its size does not matter. Destroyed without
 * `finish` when the connection breaks: what was taken until then counts.
 */
class BodySink
{
public:
    virtual ~BodySink() = default;

    /** False when no more of the body is wanted: the request is answered as it stands. */
    virtual bool take(const char* data, std::size_t size) = 0;

    /** The answer; called once, after the last piece or the one that was refused. */
    virtual Answer finish() = 0;
};

/** How a request's body is to be received, decided when its head has been read. */
struct Reception
{
    static constexpr std::uint64_t wholeBodyLimit = 64ULL * 1024 * 1024;

    std::unique_ptr<BodySink> sink = {};     ///< null: the body is read whole and goes with the request
    std::optional<Answer> refusal = {};      ///< instead of reading the body
    std::uint64_t limit = wholeBodyLimit;    ///< bytes; a longer body is answered with 413
    std::optional<std::uint64_t> cutAt = {}; ///< so many bytes of the body, then the connection is closed
};

} // namespace documents
