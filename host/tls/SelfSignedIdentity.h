#pragma once

#include <string>
#include <vector>

namespace tls {

/** A certificate with its private key, both as PEM text. */
struct Identity
{
    std::string certificatePem;
    std::string privateKeyPem;
};

/**
 * Makes a fresh P-256 key and a certificate signed by itself, valid from one day ago for one year, with
 * `dnsNames` (at least one; an IPv4 address in dotted form becomes an IP entry) as subject alternative names.
 *
 * Throws std::runtime_error with OpenSSL's reason when the key or certificate cannot be made.
 */
Identity makeSelfSignedIdentity(const std::vector<std::string>& dnsNames);

} // namespace tls
