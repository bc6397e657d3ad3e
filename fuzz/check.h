#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/** Ends the run as a find when something that always holds does not. */
inline void check(bool holds)
{
    if (!holds)
        std::abort();
}

/** The input, at an allocation of its own size: a read behind its end is seen. */
inline QByteArray inputBytes(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), int(size)};
}
