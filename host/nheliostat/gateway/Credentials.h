#pragma once

#include <string>
#include <string_view>

namespace gateway {

/** `bytes` bytes from the system's random source as lower-case hexadecimal text. Throws std::runtime_error.
 */
std::string randomHex(std::size_t bytes);

/** The user name and the random password of one gateway. */
class Credentials
{
public:
    Credentials();

    const std::string& user() const { return m_user; }
    const std::string& password() const { return m_password; }
    /** Whether a Proxy-Authorization value carries them; the time taken says nothing about the password. */
    bool accept(std::string_view authorization) const;

private:
    std::string m_user;
    std::string m_password;
    std::string m_encoded; //!< base64 of "user:password"
};

} // namespace gateway
