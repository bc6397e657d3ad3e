#include "drive/Sha1.h"

#include <array>
#include <stdexcept>

#include <openssl/evp.h>

namespace documents {

struct Sha1::State
{
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context{EVP_MD_CTX_new(), &EVP_MD_CTX_free};
};

Sha1::Sha1()
    : m_state(std::make_unique<State>())
{
    if (!m_state->context || EVP_DigestInit_ex(m_state->context.get(), EVP_sha1(), nullptr) != 1)
        throw std::runtime_error("SHA-1 is not to be had");
}

Sha1::~Sha1() = default;

void Sha1::add(const char* data, std::size_t size)
{
    EVP_DigestUpdate(m_state->context.get(), data, size);
}

QString Sha1::finish()
{
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest = {};
    unsigned length = 0;
    EVP_DigestFinal_ex(m_state->context.get(), digest.data(), &length);
    const auto* bytes = reinterpret_cast<const char*>(digest.data());
    return QString::fromLatin1(QByteArray::fromRawData(bytes, static_cast<int>(length)).toHex());
}

QString Sha1::of(const QByteArray& bytes)
{
    Sha1 sum;
    sum.add(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    return sum.finish();
}

} // namespace documents
