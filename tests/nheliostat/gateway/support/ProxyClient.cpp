#include "support/ProxyClient.h"

#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>

#include <limits>

namespace http = boost::beast::http;

ProxyClient::ProxyClient(const RequestGateway& gateway, const QByteArray& view)
    : m_tls(boost::asio::ssl::context::tls_client)
{
    const QByteArray pair = gateway.user().toUtf8() + ':' + gateway.password().toUtf8();
    m_authorization = "Proxy-Authorization: Basic " + pair.toBase64().toStdString() + "\r\n";
    if (!view.isEmpty())
        m_viewLine = std::string(RequestGateway::viewHeader) + ": " + view.toStdString() + "\r\n";
    m_stream.connect(gateway.port());
}

void ProxyClient::send(const std::string& method, const std::string& target, const std::string& lines,
                       const std::string& body)
{
    const std::string length = body.empty() ? "" : "Content-Length: " + std::to_string(body.size()) + "\r\n";
    m_stream.write(method + ' ' + target + " HTTP/1.1\r\nHost: ignored.example.test\r\n" +
                   (m_stream.ssl() ? "" : m_authorization) + m_viewLine + lines + length + "\r\n" + body);
}

ProxyClient::Response ProxyClient::receive(bool toHead)
{
    http::response_parser<http::string_body> parser;
    parser.body_limit(std::numeric_limits<std::uint64_t>::max());
    parser.skip(toHead);
    http::read(m_stream, m_input, parser);
    return parser.release();
}

ProxyClient::Response ProxyClient::get(const std::string& url, const std::string& lines)
{
    send("GET", url, lines);
    return receive();
}

unsigned ProxyClient::openTunnel(const std::string& endpoint)
{
    send("CONNECT", endpoint);
    return receive(true).result_int();
}

QByteArray ProxyClient::startTls(const char* alpn)
{
    m_stream.startTls(m_tls, boost::asio::ssl::stream_base::client, alpn);
    X509* certificate = SSL_get1_peer_certificate(m_stream.ssl());
    unsigned char* der = nullptr;
    const int size = i2d_X509(certificate, &der);
    const QByteArray result(reinterpret_cast<const char*>(der), size);
    OPENSSL_free(der);
    X509_free(certificate);
    return result;
}
