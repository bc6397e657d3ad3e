#pragma once

#include <QByteArray>

#include <utility>

#include <unistd.h>

/** An open file or folder of the system, closed with this object; -1 for none. */
class FileDescriptor
{
public:
    explicit FileDescriptor(int descriptor = -1)
        : m_descriptor(descriptor)
    {
    }
    FileDescriptor(FileDescriptor&& other) noexcept
        : m_descriptor(other.release())
    {
    }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~FileDescriptor() { close(); }

    bool isOpen() const { return m_descriptor >= 0; }
    int get() const { return m_descriptor; }
    int release() { return std::exchange(m_descriptor, -1); }
    /** False when what was written did not all arrive. */
    bool close() { return !isOpen() || ::close(release()) == 0; }

private:
    int m_descriptor;
};

/**
 * The folder at an absolute path, to name files in it; `make` makes what is missing of the way. Not open when
 * the way is no chain of folders: no symbolic link is followed.
 */
FileDescriptor openFolder(const QByteArray& path, bool make);
