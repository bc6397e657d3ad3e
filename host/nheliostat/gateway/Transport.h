#pragma once

#include <boost/asio/ip/tcp.hpp>

#include <openssl/ssl.h>
#include <sys/uio.h>

#include <memory>
#include <string>

namespace gateway {

struct SslDeleter
{
    void operator()(SSL* ssl) const { SSL_free(ssl); }
};
using SslPtr = std::unique_ptr<SSL, SslDeleter>;

struct IoResult
{
    enum class Status {
        Done,       //!< `bytes` were moved (at least one), or the step is complete
        NeedsRead,  //!< nothing moved; try again when the socket is readable
        NeedsWrite, //!< nothing moved; try again when the socket is writable
        Closed,     //!< the peer has ended its side in order
        Failed,     //!< see Transport::lastError
    };

    Status status = Status::Done;
    std::size_t bytes = 0;

    bool done() const { return status == Status::Done; }
    bool blocked() const { return status == Status::NeedsRead || status == Status::NeedsWrite; }
};

class Transport;

/** Told when a wait of a transport has ended. Called on the thread of the transport's io_context. */
class TransportListener
{
public:
    virtual ~TransportListener() = default;
    virtual void onReadable(Transport& transport) = 0;
    virtual void onWritable(Transport& transport) = 0;
};

/**
 * A TCP connection, plain or under TLS, with calls that never block: each moves what it can now and says what
 * to wait for. A wait is asked for only after a call has said so, because bytes may sit decrypted inside TLS.
 *
 * Belongs to the thread of its io_context; that thread must not take SIGPIPE. Waits hold no reference:
 * dropping the last owner closes the connection, and a listener that is gone is not called.
 */
class Transport : public std::enable_shared_from_this<Transport>
{
public:
    explicit Transport(boost::asio::ip::tcp::socket socket);

    boost::asio::ip::tcp::socket& socket() { return m_socket; }
    void setListener(std::weak_ptr<TransportListener> listener) { m_listener = std::move(listener); }

    /** From now on bytes go through `ssl`, which has its role and settings; `handshake` comes next. */
    void startTls(SslPtr ssl);
    bool isTls() const { return m_ssl != nullptr; }
    IoResult handshake();

    IoResult read(char* data, std::size_t size);
    /** `more`: other bytes follow at once, so a packet that is not full may wait for them. */
    IoResult write(const iovec* parts, int count, bool more = false);
    IoResult write(const char* data, std::size_t size);
    /** Sends up to `size` bytes of `file` from `offset`. A file that ends early is a failure. */
    IoResult sendFile(int file, off_t offset, std::size_t size);
    /** Ends the sending side; reading goes on. */
    void closeWrite();
    void close();

    /** Waits once; a wait that is already under way is enough. */
    void wantRead();
    void wantWrite();
    /** Waits for what `result` says it needs. */
    void want(const IoResult& result);

    /** True when a read would give bytes although the socket has none. */
    bool hasBufferedInput() const { return m_ssl && SSL_has_pending(m_ssl.get()) != 0; }
    /** True when the peer has closed, as far as the kernel knows. Consumes nothing. */
    bool peerGone() const;
    /** True for an idle connection that is open and has nothing unread. */
    bool isQuiet() const;
    /** The next byte of a plain connection, left in place; -1 when there is none yet or no more. */
    int peekByte() const;
    /** What the last failed call stumbled over, as text for people. */
    const std::string& lastError() const { return m_lastError; }

private:
    IoResult systemResult(ssize_t result, IoResult::Status blocked);
    IoResult tlsResult(int result);

    boost::asio::ip::tcp::socket m_socket;
    SslPtr m_ssl;
    std::weak_ptr<TransportListener> m_listener;
    std::string m_lastError;
    bool m_readAwaited = false;
    bool m_writeAwaited = false;
};

} // namespace gateway
