#include "tls/SelfSignedIdentity.h"

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <cctype>
#include <memory>
#include <stdexcept>

namespace tls {
namespace {

template <auto Free>
struct Deleter
{
    template <typename T>
    void operator()(T* pointer) const
    {
        Free(pointer);
    }
};

using KeyPtr = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY_free>>;
using CertPtr = std::unique_ptr<X509, Deleter<X509_free>>;
using BioPtr = std::unique_ptr<BIO, Deleter<BIO_free_all>>;
using ExtensionPtr = std::unique_ptr<X509_EXTENSION, Deleter<X509_EXTENSION_free>>;

void require(bool ok, const char* step)
{
    if (ok)
        return;
    char reason[256] = {};
    ERR_error_string_n(ERR_get_error(), reason, sizeof reason);
    throw std::runtime_error(std::string("TLS identity: ") + step + ": " + reason);
}

void addExtension(X509* certificate, int nid, const std::string& value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    const ExtensionPtr extension(X509V3_EXT_conf_nid(nullptr, &context, nid, value.c_str()));
    require(extension && X509_add_ext(certificate, extension.get(), -1) == 1, "extension");
}

std::string alternativeNames(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names) {
        const bool isAddress = std::all_of(name.begin(), name.end(),
                                           [](unsigned char c) { return std::isdigit(c) != 0 || c == '.'; });
        text += (text.empty() ? "" : ",") + std::string(isAddress ? "IP:" : "DNS:") + name;
    }
    return text;
}

std::string textOf(BIO* bio)
{
    char* data = nullptr;
    const long size = BIO_get_mem_data(bio, &data);
    return {data, static_cast<std::size_t>(size)};
}

CertPtr makeCertificate(EVP_PKEY* key, const std::vector<std::string>& dnsNames)
{
    constexpr long oneDay = 24L * 60 * 60;
    CertPtr certificate(X509_new());
    require(certificate != nullptr, "certificate");
    X509_set_version(certificate.get(), 2);

    std::uint64_t serial = 0;
    require(RAND_bytes(reinterpret_cast<unsigned char*>(&serial), sizeof serial) == 1, "serial number");
    ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate.get()), serial >> 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -oneDay);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), 365 * oneDay);
    X509_set_pubkey(certificate.get(), key);

    X509_NAME* name = X509_get_subject_name(certificate.get());
    const auto* commonName = reinterpret_cast<const unsigned char*>(dnsNames.front().c_str());
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8, commonName, -1, -1, 0);
    X509_set_issuer_name(certificate.get(), name);

    addExtension(certificate.get(), NID_subject_alt_name, alternativeNames(dnsNames));
    addExtension(certificate.get(), NID_ext_key_usage, "serverAuth");
    addExtension(certificate.get(), NID_basic_constraints, "CA:FALSE");
    require(X509_sign(certificate.get(), key, EVP_sha256()) > 0, "signature");
    return certificate;
}

} // namespace

Identity makeSelfSignedIdentity(const std::vector<std::string>& dnsNames)
{
    if (dnsNames.empty())
        throw std::runtime_error("TLS identity: no name given");

    const KeyPtr key(EVP_EC_gen("P-256"));
    require(key != nullptr, "key");
    const CertPtr certificate = makeCertificate(key.get(), dnsNames);

    const BioPtr certificateText(BIO_new(BIO_s_mem()));
    const BioPtr keyText(BIO_new(BIO_s_mem()));
    require(PEM_write_bio_X509(certificateText.get(), certificate.get()) == 1, "certificate text");
    require(PEM_write_bio_PrivateKey(keyText.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) == 1,
            "key text");
    return {textOf(certificateText.get()), textOf(keyText.get())};
}

} // namespace tls
