#include "gateway/TlsContexts.h"

#include "tls/SelfSignedIdentity.h"

#include <boost/asio/ip/address.hpp>

#include <openssl/bio.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <stdexcept>

namespace gateway {
namespace {

// The wire form of the one protocol spoken here.
constexpr unsigned char httpProtocol[] = {8, 'h', 't', 't', 'p', '/', '1', '.', '1'};

void require(bool ok, const char* step)
{
    if (!ok)
        throw std::runtime_error(std::string("request gateway: TLS: ") + step);
}

int selectProtocol(SSL*, const unsigned char** chosen, unsigned char* size, const unsigned char* offered,
                   unsigned int offeredSize, void*)
{
    unsigned char* found = nullptr;
    if (SSL_select_next_proto(&found, size, httpProtocol, sizeof httpProtocol, offered, offeredSize) !=
        OPENSSL_NPN_NEGOTIATED)
        return SSL_TLSEXT_ERR_NOACK;
    *chosen = found;
    return SSL_TLSEXT_ERR_OK;
}

struct BioDeleter
{
    void operator()(BIO* bio) const { BIO_free_all(bio); }
};
using BioPtr = std::unique_ptr<BIO, BioDeleter>;

BioPtr memoryOf(const std::string& text)
{
    return BioPtr(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
}

QByteArray useIdentity(SSL_CTX* context, const tls::Identity& identity)
{
    const std::unique_ptr<X509, decltype(&X509_free)> certificate(
        PEM_read_bio_X509(memoryOf(identity.certificatePem).get(), nullptr, nullptr, nullptr), X509_free);
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
        PEM_read_bio_PrivateKey(memoryOf(identity.privateKeyPem).get(), nullptr, nullptr, nullptr),
        EVP_PKEY_free);
    require(certificate && key, "the identity cannot be read");
    require(SSL_CTX_use_certificate(context, certificate.get()) == 1, "the certificate cannot be used");
    require(SSL_CTX_use_PrivateKey(context, key.get()) == 1, "the key cannot be used");

    QByteArray der(i2d_X509(certificate.get(), nullptr), Qt::Uninitialized);
    auto* end = reinterpret_cast<unsigned char*>(der.data());
    require(i2d_X509(certificate.get(), &end) == der.size(), "the certificate cannot be encoded");
    return der;
}

} // namespace

TlsContexts::TlsContexts(const std::vector<std::string>& interceptedHosts)
    : m_server(SSL_CTX_new(TLS_server_method()))
    , m_client(SSL_CTX_new(TLS_client_method()))
{
    require(m_server && m_client, "no context");
    SSL_CTX_set_min_proto_version(m_server.get(), TLS1_2_VERSION);
    SSL_CTX_set_min_proto_version(m_client.get(), TLS1_2_VERSION);
    // A peer that closes without saying so is an ordinary end of the connection.
    SSL_CTX_set_options(m_server.get(), SSL_OP_IGNORE_UNEXPECTED_EOF | SSL_OP_NO_RENEGOTIATION);

    // Without intercepted hosts there is still one certificate, so that callers need no special case.
    const std::vector<std::string> none = {"gateway.invalid"};
    m_certificateDer = useIdentity(
        m_server.get(), tls::makeSelfSignedIdentity(interceptedHosts.empty() ? none : interceptedHosts));
    SSL_CTX_set_alpn_select_cb(m_server.get(), selectProtocol, nullptr);

    SSL_CTX_set_default_verify_paths(m_client.get());
    SSL_CTX_set_alpn_protos(m_client.get(), httpProtocol, sizeof httpProtocol);
}

SslPtr TlsContexts::serverSession() const
{
    SslPtr ssl(SSL_new(m_server.get()));
    if (ssl)
        SSL_set_accept_state(ssl.get());
    return ssl;
}

SslPtr TlsContexts::clientSession(const std::string& host, bool verified) const
{
    SslPtr ssl(SSL_new(m_client.get()));
    if (!ssl)
        return ssl;
    SSL_set_connect_state(ssl.get());
    boost::system::error_code notAnAddress;
    boost::asio::ip::make_address(host, notAnAddress);
    if (notAnAddress)
        SSL_set_tlsext_host_name(ssl.get(), host.c_str());
    if (verified) {
        SSL_set_verify(ssl.get(), SSL_VERIFY_PEER, nullptr);
        if (notAnAddress)
            SSL_set1_host(ssl.get(), host.c_str());
        else
            X509_VERIFY_PARAM_set1_ip_asc(SSL_get0_param(ssl.get()), host.c_str());
    }
    return ssl;
}

} // namespace gateway
