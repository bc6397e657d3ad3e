#pragma once

#include "support/TestStream.h"

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>

#include <QString>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

/** One connection to the scripted server. */
class OriginConnection
{
public:
    using Request = boost::beast::http::request<boost::beast::http::string_body>;

    TestStream& stream() { return m_stream; }
    /** Nothing when the peer has ended the connection. */
    std::optional<Request> readRequest();
    /** Only the head; the body stays to be read. */
    std::optional<Request> readHead();
    void write(const std::string& text) { m_stream.write(text); }

private:
    TestStream m_stream;
    boost::beast::flat_buffer m_input;
};

/** A server on loopback that runs `serve` for each connection, each on its own thread; it closes afterwards.
 */
class OriginServer
{
public:
    using Serve = std::function<void(OriginConnection& connection)>;

    explicit OriginServer(Serve serve, bool withTls = false);
    ~OriginServer();

    QString address() const;
    int connections() const { return m_accepted; }

private:
    void acceptAll();
    void run(const std::shared_ptr<OriginConnection>& connection);

    const Serve m_serve;
    const bool m_withTls;
    boost::asio::ssl::context m_tls;
    boost::asio::io_context m_io;
    boost::asio::ip::tcp::acceptor m_acceptor;
    std::atomic<int> m_accepted{0};
    std::vector<std::shared_ptr<OriginConnection>> m_open;
    std::vector<std::thread> m_threads;
    std::thread m_acceptThread;
};

/** Answers every request on a connection with what `answer` makes of it, until the peer ends. */
OriginServer::Serve answering(std::function<std::string(const OriginConnection::Request&)> answer);
/** A 200 with this body. */
std::string okText(const std::string& body);
