#include "DocumentsServer.h"

#include <stdexcept>
#include <utility>

#include <boost/asio/ssl/context.hpp>

#include <QJsonDocument>
#include <QJsonObject>

#include "drive/Drive.h"
#include "http/HttpConnection.h"
#include "http/HttpListener.h"
#include "service/DocumentsService.h"
#include "tls/SelfSignedIdentity.h"

namespace documents {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

void useIdentity(asio::ssl::context& context, const tls::Identity& identity)
{
    context.set_options(asio::ssl::context::default_workarounds | asio::ssl::context::no_sslv2 |
                        asio::ssl::context::no_sslv3 | asio::ssl::context::no_tlsv1 |
                        asio::ssl::context::no_tlsv1_1);
    context.use_certificate_chain(asio::buffer(identity.certificatePem));
    context.use_private_key(asio::buffer(identity.privateKeyPem), asio::ssl::context::pem);
}

std::unique_ptr<HttpListener> listen(asio::io_context& context, const char* option, int port,
                                     HttpListener::Serve serve)
{
    try {
        return std::make_unique<HttpListener>(context, static_cast<unsigned short>(port), std::move(serve));
    } catch (const boost::system::system_error& error) {
        throw std::runtime_error(std::string("--") + option + ": port " + std::to_string(port) +
                                 " of 127.0.0.1 cannot be used: " + error.code().message() + ".");
    }
}

} // namespace

struct DocumentsServer::Parts
{
    Parts(const ServerOptions& options, const Clock& clock)
        : store(options.documentsDirectory, clock)
        , drive(options.documentsDirectory + QLatin1String("/drive"), clock)
        , shaper(options.link)
        , service(store, drive, options.siteDirectory, options.packageDirectory, clock, shaper, log,
                  UserSessions(options.sessions))
        , services{[this](const HttpRequest& head) { return service.receive(head); },
                   [this](const HttpRequest& request) { return service.answer(request); }, shaper, log, clock}
    {
    }

    DocumentStore store;
    Drive drive;
    LinkShaper shaper;
    RequestLog log;
    DocumentsService service;
    ConnectionServices services;
    tls::Identity identity;
    asio::ssl::context tlsContext{asio::ssl::context::tls_server};
    std::unique_ptr<HttpListener> http;
    std::unique_ptr<HttpListener> https;
};

std::unique_ptr<DocumentsServer> DocumentsServer::start(asio::io_context& context,
                                                        const ServerOptions& options, Clock clock,
                                                        QString* errorText)
{
    auto parts = std::make_unique<Parts>(options, clock);
    Failure failure = parts->store.open();
    if (!failure)
        failure = parts->drive.open();
    if (failure) {
        *errorText = QLatin1String("--documents: ") + failure->text;
        return nullptr;
    }
    QString logError;
    if (!options.accessLog.isEmpty() && !parts->log.appendTo(options.accessLog, &logError)) {
        *errorText =
            QStringLiteral("--access-log: \"%1\" cannot be written: %2.").arg(options.accessLog, logError);
        return nullptr;
    }
    try {
        parts->identity = tls::makeSelfSignedIdentity(options.hostNames);
        useIdentity(parts->tlsContext, parts->identity);
        Parts& state = *parts;
        parts->http = listen(context, "http-port", options.httpPort,
                             [&state](tcp::socket socket) { serveHttp(std::move(socket), state.services); });
        parts->https = listen(context, "https-port", options.httpsPort, [&state](tcp::socket socket) {
            serveHttps(std::move(socket), state.tlsContext, state.services);
        });
    } catch (const std::exception& error) {
        *errorText = QString::fromLocal8Bit(error.what());
        return nullptr;
    }
    return std::unique_ptr<DocumentsServer>(new DocumentsServer(std::move(parts)));
}

DocumentsServer::DocumentsServer(std::unique_ptr<Parts> parts)
    : m_parts(std::move(parts))
{
}

DocumentsServer::~DocumentsServer() = default;

unsigned short DocumentsServer::httpPort() const
{
    return m_parts->http->port();
}

unsigned short DocumentsServer::httpsPort() const
{
    return m_parts->https->port();
}

std::string DocumentsServer::certificatePem() const
{
    return m_parts->identity.certificatePem;
}

QByteArray DocumentsServer::readyLine() const
{
    const QJsonObject ports{{QStringLiteral("http"), httpPort()}, {QStringLiteral("https"), httpsPort()}};
    return QJsonDocument(ports).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace documents
