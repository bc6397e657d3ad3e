#pragma once

#include <memory>
#include <thread>

#include "DocumentsServer.h"
#include "support/HttpClient.h"
#include "support/TemporarySite.h"

namespace documents {

/** The options of a server for that directory on free ports. */
ServerOptions optionsFor(const TemporarySite& place);

/** A real server, its io_context on a thread of its own. */
class RunningServer
{
public:
    /** Throws std::runtime_error when it does not start. */
    explicit RunningServer(const ServerOptions& options);
    ~RunningServer();

    HttpClient connect() const { return HttpClient(m_server->httpPort()); }
    HttpClient connectTls(const std::string& hostName) const;

    /** PUTs to a control resource. */
    static void tell(HttpClient& client, const std::string& resource, const std::string& body);

private:
    boost::asio::io_context m_context;
    std::unique_ptr<DocumentsServer> m_server;
    std::thread m_thread;
};

} // namespace documents
