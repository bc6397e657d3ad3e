#pragma once

#include <cstddef>
#include <fstream>
#include <unistd.h>

/** What this process has in memory now, in bytes. */
inline std::size_t residentBytes()
{
    std::size_t whole = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> whole >> resident;
    return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}
