#pragma once

#include <QString>

#include <cstdint>
#include <tuple>

#include <sys/stat.h>

namespace nrt {

/** Tells whether a file that is only ever replaced whole is still the one that was seen. */
class FileIdentity
{
public:
    /** Of no file. */
    FileIdentity() = default;

    static FileIdentity of(const QString& path)
    {
        struct stat status = {};
        FileIdentity identity;
        if (::stat(path.toLocal8Bit().constData(), &status) == 0)
            identity.m_marks = {status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
        return identity;
    }

    bool isKnown() const { return m_marks != Marks(); }
    bool operator==(const FileIdentity& other) const { return m_marks == other.m_marks; }

private:
    using Marks = std::tuple<std::uint64_t, std::int64_t, std::int64_t, std::int64_t>;

    Marks m_marks;
};

} // namespace nrt
