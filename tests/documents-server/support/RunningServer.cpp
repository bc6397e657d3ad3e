#include "support/RunningServer.h"

#include <stdexcept>

namespace documents {

ServerOptions optionsFor(const TemporarySite& place)
{
    ServerOptions options;
    options.documentsDirectory = place.documents();
    options.siteDirectory = place.site();
    options.packageDirectory = place.packages();
    options.httpPort = 0;
    options.httpsPort = 0;
    options.accessLog = place.path("access.log");
    options.hostNames = {"localhost", "docs.skyleaf.test"};
    return options;
}

RunningServer::RunningServer(const ServerOptions& options)
{
    QString errorText;
    m_server = DocumentsServer::start(
        m_context, options, [] { return 1'700'000'000'000; }, &errorText);
    if (!m_server)
        throw std::runtime_error(errorText.toStdString());
    m_thread = std::thread([this] { m_context.run(); });
}

RunningServer::~RunningServer()
{
    m_context.stop();
    m_thread.join();
}

HttpClient RunningServer::connectTls(const std::string& hostName) const
{
    return HttpClient(m_server->httpsPort(), m_server->certificatePem(), hostName);
}

void RunningServer::tell(HttpClient& client, const std::string& resource, const std::string& body)
{
    if (client.ask("PUT", "/_control/" + resource, body).result_int() != 200)
        throw std::runtime_error("the server does not accept " + body);
}

} // namespace documents
