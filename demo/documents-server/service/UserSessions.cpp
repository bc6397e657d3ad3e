#include "service/UserSessions.h"

#include <algorithm>

#include <QJsonArray>

#include "http/CookieField.h"

namespace documents {
namespace {

Error invalid(const QString& text)
{
    return {ErrorCode::Invalid, text};
}

} // namespace

UserSessions::UserSessions(const QStringList& keys)
    : m_isRestricted(!keys.isEmpty())
{
    for (const QString& key : keys)
        m_named.insert(key.toUtf8());
}

bool UserSessions::accepts(const QByteArray& cookieField) const
{
    const auto cookies = cookiesOf(cookieField);
    return std::any_of(cookies.begin(), cookies.end(), [this](const auto& cookie) {
        return cookie.first == "vlt_sid" && !cookie.second.isEmpty() &&
               m_named.contains(cookie.second) == m_isRestricted;
    });
}

Failure UserSessions::change(const QJsonObject& object)
{
    for (auto member = object.begin(); member != object.end(); ++member) {
        if (member.key() != QLatin1String("add") && member.key() != QLatin1String("remove"))
            return invalid(QStringLiteral("\"%1\" is not known.").arg(member.key()));
        const QJsonArray keys = member->toArray();
        const bool areKeys = member->isArray() && std::all_of(keys.begin(), keys.end(), [](const auto& key) {
                                 return !key.toString().isEmpty();
                             });
        if (!areKeys)
            return invalid(QStringLiteral("\"%1\" must be a list of keys.").arg(member.key()));
    }
    const auto apply = [this](const QJsonValue& keys, bool isAccepted) {
        const QJsonArray list = keys.toArray();
        for (const QJsonValue key : list) {
            if (isAccepted == m_isRestricted)
                m_named.insert(key.toString().toUtf8());
            else
                m_named.remove(key.toString().toUtf8());
        }
    };
    apply(object.value(QLatin1String("remove")), false);
    apply(object.value(QLatin1String("add")), true);
    return std::nullopt;
}

} // namespace documents
