#pragma once

#include <memory>
#include <string>

#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>

namespace documents {

using Response = boost::beast::http::response<boost::beast::http::string_body>;

/** One connection to a server on loopback, blocking. Throws boost::system::system_error when it breaks. */
class HttpClient
{
public:
    explicit HttpClient(unsigned short port);
    /** TLS: accepts only the given certificate for the given host name. */
    HttpClient(unsigned short port, const std::string& certificatePem, const std::string& hostName);
    ~HttpClient();

    void send(const std::string& text);
    /** One reply; `toHead` when it answers a HEAD request and so has no body whatever its length says. */
    Response receive(bool toHead = false);
    /** With the session of a user, unless the fields bring cookies. */
    Response ask(const std::string& method, const std::string& target, const std::string& body = {},
                 const std::string& extraFields = {});
    /** The next bytes, whatever they are; throws at the end of the stream. */
    std::string receiveSome();

private:
    struct Link;
    std::unique_ptr<Link> m_link;
};

} // namespace documents
