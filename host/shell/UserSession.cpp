#include "shell/UserSession.h"

#include "shell/AccountAuth.h"
#include "shell/config/SessionCookie.h"
#include "shell/config/UserMembers.h"

#include "nheliostat/framework/ShellApplication.h"
#include "zeolite/NxLoggerLite.h"
#include "zeolite/ZeoliteHost.h"

#include <utility>

namespace shell {

namespace {

HostUser toHostUser(const NHelioUserInfo& info)
{
    return {info.userId,       info.loggedIn,
            info.sessionKey,   withoutSessionCookie(info.cookies, info.sessionKey),
            info.localDataDir, info.cacheRoot};
}

} // namespace

NHelioUserInfo toUserInfo(const HostUser& user)
{
    const QString cookies = user.loggedIn ? withSessionCookie(user.cookies, user.sessionKey) : user.cookies;
    return {user.userId,       user.loggedIn,  user.sessionKey, cookies,
            user.localDataDir, user.cacheRoot, user.userId,     user.sessionKey};
}

UserSession::UserSession(HostUser user, ShellApplication& application, ZeoliteHost& services, QObject* parent)
    : QObject(parent)
    , m_deployed(std::move(user))
    , m_application(application)
    , m_services(services)
{
    m_services.dataCollection().setUserId(m_deployed.loggedIn ? m_deployed.userId : QString());
    m_services.setAuthProvider(std::make_unique<AccountAuth>(application));
}

QString UserSession::merge(const QJsonObject& members)
{
    // What the application holds is what counts: a script may have signed the user out.
    HostUser user = toHostUser(m_application.user());
    QString error = mergeUser(members, user);
    if (error.isEmpty())
        setUser(user);
    return error;
}

void UserSession::signIn()
{
    if (m_deployed.userId.isEmpty()) {
        NxLoggerLite::writeWarning(QStringLiteral("shell"),
                                   QStringLiteral("nobody to sign in: the host file names no user"));
        return;
    }
    HostUser user = m_deployed;
    user.loggedIn = true;
    setUser(user);
}

QString UserSession::signIn(const QString& userId, const QString& password)
{
    // The deployment holds no passwords: whoever it names may sign in with any.
    if (userId.isEmpty() || password.isEmpty())
        return tr("Enter your user name and your password.");
    if (m_deployed.userId.isEmpty())
        return tr("No user is set up for this shell.");
    if (userId != m_deployed.userId)
        return tr("There is no user \"%1\", or the password is wrong.").arg(userId);
    signIn();
    return {};
}

void UserSession::setUser(const HostUser& user)
{
    m_services.dataCollection().setUserId(user.loggedIn ? user.userId : QString());
    m_application.setUser(toUserInfo(user));
}

} // namespace shell
