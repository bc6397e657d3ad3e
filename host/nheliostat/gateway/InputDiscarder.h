#pragma once

#include <cstddef>

namespace gateway {

struct ClientLink;

/** Reads and drops what the browser sends and nobody wants, up to 4 MiB a request. */
class InputDiscarder
{
public:
    enum class Result {
        Done,    //!< the request's body has been read to its end
        Blocked, //!< a wait is under way; to be called again after it
        TooMuch, //!< the rest is not worth waiting for, or is not HTTP
        Ended,   //!< the browser has ended the connection
    };

    /** A new request begins. */
    void restart() { m_dropped = 0; }
    /** Drops the rest of the request's body. */
    Result discardBody(ClientLink& link);
    /** Drops everything until the browser ends the connection; never Done. */
    Result discardAll(ClientLink& link);

private:
    std::size_t m_dropped = 0; //!< bytes
};

} // namespace gateway
