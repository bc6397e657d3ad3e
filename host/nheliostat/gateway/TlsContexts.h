#pragma once

#include "gateway/Transport.h"

#include <QByteArray>

#include <string>
#include <vector>

namespace gateway {

struct SslContextDeleter
{
    void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
};
using SslContextPtr = std::unique_ptr<SSL_CTX, SslContextDeleter>;

/** The TLS settings of one gateway. Immutable once made; `…Session` may be called on any thread. */
class TlsContexts
{
public:
    /** Makes the identity shown for `interceptedHosts`. Throws std::runtime_error. */
    explicit TlsContexts(const std::vector<std::string>& interceptedHosts);

    const QByteArray& certificateDer() const { return m_certificateDer; }

    /** The serving side for an intercepted host. */
    SslPtr serverSession() const;
    /** The asking side towards `host` (no brackets); `verified` checks its certificate with the system's CAs.
     */
    SslPtr clientSession(const std::string& host, bool verified) const;

private:
    SslContextPtr m_server;
    SslContextPtr m_client;
    QByteArray m_certificateDer;
};

} // namespace gateway
