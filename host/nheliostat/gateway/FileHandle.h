#pragma once

#include <unistd.h>

#include <utility>

namespace gateway {

/** Owns one file descriptor. */
class FileHandle
{
public:
    FileHandle() = default;
    explicit FileHandle(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    FileHandle(FileHandle&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {
    }
    FileHandle& operator=(FileHandle&& other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~FileHandle()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }

    bool isOpen() const { return m_descriptor >= 0; }
    int get() const { return m_descriptor; }
    /** Gives the descriptor up to the caller. */
    int release() { return std::exchange(m_descriptor, -1); }

private:
    int m_descriptor = -1;
};

} // namespace gateway
