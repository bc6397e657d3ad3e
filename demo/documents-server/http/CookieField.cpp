#include "http/CookieField.h"

#include <QList>

namespace documents {

std::vector<std::pair<QByteArray, QByteArray>> cookiesOf(const QByteArray& field)
{
    std::vector<std::pair<QByteArray, QByteArray>> cookies;
    const auto parts = field.split(';');
    for (const QByteArray& part : parts) {
        const int equals = part.indexOf('=');
        if (equals > 0)
            cookies.emplace_back(part.left(equals).trimmed(), part.mid(equals + 1).trimmed());
    }
    return cookies;
}

} // namespace documents
