#include "shell/AccountAuth.h"

#include "nheliostat/framework/ShellApplication.h"

#include <QDateTime>
#include <QMessageAuthenticationCode>
#include <QUrl>

namespace shell {

namespace {

const QString dateHeader = QStringLiteral("X-Session-Date");
const QString methodHeader = QStringLiteral("X-Session-Method");

} // namespace

bool AccountAuth::prepare(QVariantMap& headers, const QString& method, const QString& url)
{
    const NHelioUserInfo& user = m_application.user();
    if (!user.loggedIn || user.sessionKey.isEmpty() || !QUrl(url).isValid())
        return false;
    headers.insert(QStringLiteral("Cookie"), user.cookies);
    headers.insert(dateHeader, QString::number(QDateTime::currentSecsSinceEpoch()));
    headers.insert(methodHeader, method);
    return true;
}

bool AccountAuth::sign(QVariantMap& headers, const QString& url)
{
    const NHelioUserInfo& user = m_application.user();
    if (!user.loggedIn || user.sessionKey.isEmpty() || !headers.contains(dateHeader))
        return false;
    const QString message = headers.value(methodHeader).toString() + u'\n' +
                            headers.value(dateHeader).toString() + u'\n' + QUrl(url).path();
    headers.insert(
        QStringLiteral("X-Session-Signature"),
        QString::fromLatin1(QMessageAuthenticationCode::hash(message.toUtf8(), user.sessionKey.toUtf8(),
                                                             QCryptographicHash::Sha256)
                                .toHex()));
    return true;
}

} // namespace shell
