#include "support/HttpClient.h"

#include <optional>

#include <boost/asio/connect.hpp>
#include <boost/asio/ssl.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/ssl.hpp>

namespace documents {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;

} // namespace

struct HttpClient::Link
{
    explicit Link(unsigned short port) { socket.connect({asio::ip::address_v4::loopback(), port}); }

    template <typename Operation>
    auto with(Operation operation)
    {
        return tls ? operation(*tls) : operation(socket);
    }

    asio::io_context context;
    asio::ip::tcp::socket socket{context};
    std::optional<asio::ssl::context> trust;
    std::optional<asio::ssl::stream<asio::ip::tcp::socket&>> tls;
    beast::flat_buffer buffer;
};

HttpClient::HttpClient(unsigned short port)
    : m_link(std::make_unique<Link>(port))
{
}

HttpClient::HttpClient(unsigned short port, const std::string& certificatePem, const std::string& hostName)
    : m_link(std::make_unique<Link>(port))
{
    m_link->trust.emplace(asio::ssl::context::tls_client);
    m_link->trust->add_certificate_authority(asio::buffer(certificatePem));
    m_link->trust->set_verify_mode(asio::ssl::verify_peer);
    m_link->tls.emplace(m_link->socket, *m_link->trust);
    m_link->tls->set_verify_callback(asio::ssl::host_name_verification(hostName));
    m_link->tls->handshake(asio::ssl::stream_base::client);
}

HttpClient::~HttpClient() = default;

void HttpClient::send(const std::string& text)
{
    m_link->with([&](auto& stream) { return asio::write(stream, asio::buffer(text)); });
}

Response HttpClient::receive(bool toHead)
{
    http::response_parser<http::string_body> parser;
    parser.skip(toHead);
    m_link->with([&](auto& stream) { return http::read(stream, m_link->buffer, parser); });
    return parser.release();
}

Response HttpClient::ask(const std::string& method, const std::string& target, const std::string& body,
                         const std::string& extraFields)
{
    const bool bringsCookies = extraFields.find("Cookie:") != std::string::npos;
    send(method + " " + target +
         " HTTP/1.1\r\nHost: docs.skyleaf.test\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" +
         (bringsCookies ? "" : "Cookie: vlt_sid=anna\r\n") + extraFields + "\r\n" + body);
    return receive(method == "HEAD");
}

std::string HttpClient::receiveSome()
{
    std::string text(64 * 1024, '\0');
    text.resize(m_link->with([&](auto& stream) { return stream.read_some(asio::buffer(text)); }));
    return text;
}

} // namespace documents
