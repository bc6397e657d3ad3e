#pragma once

#include <algorithm>
#include <string_view>

namespace gateway {

/** Finds the end of a head while it arrives; looks at no byte twice, whatever the pieces. */
class HeadScanner
{
public:
    /** Another head begins. */
    void restart() { m_seen = 0; }

    /** The size of the head that `received` begins with; 0 when there is more to come. */
    std::size_t headSize(std::string_view received)
    {
        constexpr std::string_view end = "\r\n\r\n";
        const std::size_t found = received.find(end, m_seen);
        if (found != std::string_view::npos)
            return found + end.size();
        m_seen = received.size() - std::min(received.size(), end.size() - 1);
        return 0;
    }

private:
    std::size_t m_seen = 0; //!< in which no end begins
};

} // namespace gateway
