#pragma once

#include "support/TestStream.h"

#include "gateway/RequestGateway.h"

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>

#include <string>

/** One browser connection to a gateway. Requests carry the credentials and the view unless sent raw. */
class ProxyClient
{
public:
    using Response = boost::beast::http::response<boost::beast::http::string_body>;

    explicit ProxyClient(const RequestGateway& gateway, const QByteArray& view = {});

    TestStream& stream() { return m_stream; }
    /** "Proxy-Authorization: …", a complete line. */
    const std::string& authorization() const { return m_authorization; }

    /** `lines` are complete header lines; a body gets its Content-Length. */
    void send(const std::string& method, const std::string& target, const std::string& lines = {},
              const std::string& body = {});
    Response receive(bool toHead = false);
    Response get(const std::string& url, const std::string& lines = {});
    /** Asks for a tunnel and returns the status. */
    unsigned openTunnel(const std::string& endpoint);
    /** Inside an intercepted tunnel; returns the certificate shown. */
    QByteArray startTls(const char* alpn = "http/1.1");
    void leave() { m_stream.close(); }

private:
    boost::asio::ssl::context m_tls;
    TestStream m_stream;
    boost::beast::flat_buffer m_input;
    std::string m_authorization;
    std::string m_viewLine;
};
