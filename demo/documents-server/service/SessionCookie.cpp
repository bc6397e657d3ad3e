#include "service/SessionCookie.h"

#include <algorithm>
#include <array>

#include <QRandomGenerator>
#include <QString>

#include "http/CookieField.h"

namespace documents {

bool hasSessionCookie(const QByteArray& cookieField)
{
    const auto cookies = cookiesOf(cookieField);
    return std::any_of(cookies.begin(), cookies.end(),
                       [](const auto& cookie) { return cookie.first == "docs_session"; });
}

QByteArray newSessionCookie()
{
    std::array<quint32, 4> words = {};
    QRandomGenerator::system()->fillRange(words.data(), words.size());
    const auto* bytes = reinterpret_cast<const char*>(words.data());
    return "docs_session=" + QByteArray(bytes, sizeof words).toHex() + "; Path=/; HttpOnly";
}

} // namespace documents
