#include "gateway/Credentials.h"

#include "gateway/HeaderRules.h"

#include <QByteArray>

#include <openssl/crypto.h>
#include <openssl/rand.h>

#include <stdexcept>

namespace gateway {

std::string randomHex(std::size_t bytes)
{
    QByteArray data(static_cast<int>(bytes), Qt::Uninitialized);
    if (RAND_bytes(reinterpret_cast<unsigned char*>(data.data()), data.size()) != 1)
        throw std::runtime_error("request gateway: the system gives no random numbers");
    return data.toHex().toStdString();
}

Credentials::Credentials()
    : m_user("shell")
    , m_password(randomHex(16))
    , m_encoded(QByteArray::fromStdString(m_user + ':' + m_password).toBase64().toStdString())
{
}

bool Credentials::accept(std::string_view authorization) const
{
    constexpr std::string_view scheme = "Basic ";
    if (!equalsIgnoringCase(authorization.substr(0, scheme.size()), scheme))
        return false;
    std::string_view given = authorization.substr(scheme.size());
    given.remove_prefix(std::min(given.find_first_not_of(' '), given.size()));
    return given.size() == m_encoded.size() &&
           CRYPTO_memcmp(given.data(), m_encoded.data(), given.size()) == 0;
}

} // namespace gateway
