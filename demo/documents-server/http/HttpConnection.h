#pragma once

#include <functional>

#include <boost/asio/ip/tcp.hpp>

#include "http/BodySink.h"
#include "http/HttpMessage.h"
#include "http/LinkShaper.h"
#include "http/RequestLog.h"
#include "store/DocumentStore.h"

namespace boost::asio::ssl {
class context;
}

namespace documents {

/** What all connections share. Everything outlives the io_context's run; all calls come from its one thread.
 */
struct ConnectionServices
{
    std::function<Reception(const HttpRequest&)> receive; ///< of a request whose body is still to come
    std::function<Answer(const HttpRequest&)> answer;
    LinkShaper& shaper;
    RequestLog& log;
    Clock clock;
};

/**
 * Serve one accepted connection until it ends: HTTP/1.1 with keep-alive, one request after the other. A head
 * (up to 32 KiB, else 431; malformed 400) goes to `services.receive`; the body is then streamed into the sink
 * given, or read whole (up to the limit given, else 413) and answered through `services.answer`; delayed as
 * the shaper and the answer say, sent and logged. A connection that is silent for a minute is closed. The
 * connection owns itself: it lives as long as an operation of it is pending.
 */
void serveHttp(boost::asio::ip::tcp::socket socket, const ConnectionServices& services);
void serveHttps(boost::asio::ip::tcp::socket socket, boost::asio::ssl::context& tls,
                const ConnectionServices& services);

} // namespace documents
