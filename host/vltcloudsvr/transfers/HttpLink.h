#pragma once

#include "base/Outcome.h"
#include "vltcloudsvr/transfers/Endpoint.h"

#include <atomic>
#include <memory>
#include <string>

namespace vlt::cloudsvr {

/**
 * One connection to a documents service, kept open between requests. Each operation blocks until it is done,
 * for at most half a minute without progress; used on one thread, except `interrupt`. After an error the
 * connection is closed, and the next request opens another one.
 */
class HttpLink
{
public:
    struct Failure
    {
        std::string text;
        bool isInterrupted = false;
    };
    template <typename T>
    using Outcome = base::Outcome<T, Failure>;

    struct Request
    {
        std::string method;
        std::string path;      //!< below the base path, encoded, with the query
        std::string headers{}; //!< further ones, each ended by "\r\n"
        long long length = 0;  //!< of the body
        int patienceSeconds = 30;
    };
    struct Head
    {
        int status = 0;
        long long length = -1; //!< of the body; -1: only its end tells
        std::string etag;
        std::string contentRange;
    };
    struct Done
    {
    };

    HttpLink();
    ~HttpLink();
    HttpLink(const HttpLink&) = delete;
    HttpLink& operator=(const HttpLink&) = delete;

    /** From now on requests go there; a connection to another place is closed. */
    void setEndpoint(const Endpoint& endpoint);

    // One request after the other: `send`, its body in pieces, `receive`, then the answer's body.
    Outcome<Done> send(const Request& request);
    /** When it fails the service may have answered early: `receive` tells. */
    Outcome<Done> sendBody(const char* data, std::size_t size);
    Outcome<Head> receive();
    /** The next bytes of a body whose length is known; 0 at its end. */
    Outcome<std::size_t> receiveBody(char* data, std::size_t size);
    /** The whole body, at most `limit` bytes. */
    Outcome<std::string> receiveAll(std::size_t limit);
    void close();

    /** Ends the operation that is under way and every later one until `resume`. Any thread. */
    void interrupt();
    void resume();

private:
    class Parts;

    std::unique_ptr<Parts> m_parts;
};

} // namespace vlt::cloudsvr
