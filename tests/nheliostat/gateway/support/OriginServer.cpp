#include "support/OriginServer.h"

#include "tls/SelfSignedIdentity.h"

#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>

#include <sys/socket.h>

namespace http = boost::beast::http;

std::optional<OriginConnection::Request> OriginConnection::readRequest()
{
    http::request_parser<http::string_body> parser;
    parser.header_limit(64 * 1024);
    parser.body_limit(64 * 1024 * 1024);
    boost::system::error_code error;
    http::read(m_stream, m_input, parser, error);
    return error ? std::nullopt : std::optional(parser.release());
}

std::optional<OriginConnection::Request> OriginConnection::readHead()
{
    http::request_parser<http::string_body> parser;
    boost::system::error_code error;
    http::read_header(m_stream, m_input, parser, error);
    return error ? std::nullopt : std::optional(parser.release());
}

OriginServer::OriginServer(Serve serve, bool withTls)
    : m_serve(std::move(serve))
    , m_withTls(withTls)
    , m_tls(boost::asio::ssl::context::tls_server)
    , m_acceptor(m_io, {boost::asio::ip::address_v4::loopback(), 0})
{
    if (withTls) {
        const tls::Identity identity = tls::makeSelfSignedIdentity({"origin.example.test"});
        m_tls.use_certificate(boost::asio::buffer(identity.certificatePem), boost::asio::ssl::context::pem);
        m_tls.use_private_key(boost::asio::buffer(identity.privateKeyPem), boost::asio::ssl::context::pem);
    }
    m_acceptThread = std::thread(&OriginServer::acceptAll, this);
}

OriginServer::~OriginServer()
{
    ::shutdown(m_acceptor.native_handle(), SHUT_RDWR);
    m_acceptThread.join();
    for (const auto& connection : m_open)
        ::shutdown(connection->stream().socket().native_handle(), SHUT_RDWR);
    for (std::thread& thread : m_threads)
        thread.join();
}

QString OriginServer::address() const
{
    return QStringLiteral("127.0.0.1:%1").arg(m_acceptor.local_endpoint().port());
}

void OriginServer::acceptAll()
{
    for (;;) {
        auto connection = std::make_shared<OriginConnection>();
        boost::system::error_code error;
        m_acceptor.accept(connection->stream().socket(), error);
        if (error)
            return;
        ++m_accepted;
        m_open.push_back(connection);
        m_threads.emplace_back(&OriginServer::run, this, connection);
    }
}

void OriginServer::run(const std::shared_ptr<OriginConnection>& connection)
{
    try {
        if (m_withTls)
            connection->stream().startTls(m_tls, boost::asio::ssl::stream_base::server);
        m_serve(*connection);
    } catch (const boost::system::system_error&) {
        // The peer has left in the middle; the test sees to what matters about that.
    }
    // The descriptor stays open for the destructor, the connection does not.
    ::shutdown(connection->stream().socket().native_handle(), SHUT_RDWR);
}

OriginServer::Serve answering(std::function<std::string(const OriginConnection::Request&)> answer)
{
    return [answer = std::move(answer)](OriginConnection& connection) {
        while (const auto request = connection.readRequest())
            connection.write(answer(*request));
    };
}

std::string okText(const std::string& body)
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}
