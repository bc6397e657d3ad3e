#include "vltcloudsvr/transfers/Sha1.h"

#include <QByteArray>

#include <array>
#include <openssl/evp.h>

namespace vlt::cloudsvr {

void Sha1::Deleter::operator()(evp_md_ctx_st* context) const
{
    EVP_MD_CTX_free(context);
}

Sha1::Sha1()
    : m_context(EVP_MD_CTX_new())
{
    reset();
}

Sha1::~Sha1() = default;

void Sha1::reset()
{
    EVP_DigestInit_ex(m_context.get(), EVP_sha1(), nullptr);
}

void Sha1::add(const char* data, std::size_t size)
{
    EVP_DigestUpdate(m_context.get(), data, size);
}

QString Sha1::finish()
{
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int size = 0;
    EVP_DigestFinal_ex(m_context.get(), digest.data(), &size);
    return QString::fromLatin1(
        QByteArray::fromRawData(reinterpret_cast<const char*>(digest.data()), int(size)).toHex());
}

} // namespace vlt::cloudsvr
