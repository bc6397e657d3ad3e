#include "shell/config/SessionCookie.h"

#include <QStringList>

#include <algorithm>

namespace shell {

namespace {

const QString sessionName = QStringLiteral("vlt_sid");

QStringList cookiesIn(const QString& text)
{
    QStringList cookies;
    const auto parts = text.splitRef(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (const QStringRef& part : parts) {
        if (!part.trimmed().isEmpty())
            cookies.append(part.trimmed().toString());
    }
    return cookies;
}

bool isCookieValue(const QString& text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](QChar c) {
        return c > QLatin1Char(' ') && c <= QLatin1Char('~') && !QStringLiteral("\",;\\").contains(c);
    });
}

} // namespace

QString withSessionCookie(const QString& cookies, const QString& sessionKey)
{
    QStringList all = cookiesIn(cookies);
    const bool hasSession = std::any_of(all.cbegin(), all.cend(), [](const QString& cookie) {
        return cookie.section(QLatin1Char('='), 0, 0).trimmed() == sessionName;
    });
    if (hasSession || !isCookieValue(sessionKey))
        return cookies;
    all.append(sessionName + QLatin1Char('=') + sessionKey);
    return all.join(QStringLiteral("; ")) + QLatin1Char(';');
}

QString withoutSessionCookie(const QString& cookies, const QString& sessionKey)
{
    QStringList all = cookiesIn(cookies);
    if (sessionKey.isEmpty() || all.removeAll(sessionName + QLatin1Char('=') + sessionKey) == 0)
        return cookies;
    return all.isEmpty() ? QString() : all.join(QStringLiteral("; ")) + QLatin1Char(';');
}

} // namespace shell
