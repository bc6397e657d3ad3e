#pragma once

#include "shell/config/HostFile.h"

#include <QObject>

class ShellApplication;
class ZeoliteHost;
struct NHelioUserInfo;

namespace shell {

NHelioUserInfo toUserInfo(const HostUser& user);

/** The user of the shell: told to the windows' application and to data collection. User-interface thread. */
class UserSession final : public QObject
{
    Q_OBJECT
public:
    /** `application` was set up with the same user. */
    UserSession(HostUser user, ShellApplication& application, ZeoliteHost& services,
                QObject* parent = nullptr);

    /** Takes over the members given and raises the login signal. Empty, or the error that names the member.
     */
    QString merge(const QJsonObject& members);
    /** The user that the host file names; may be empty. */
    const QString& deployedUserId() const { return m_deployed.userId; }
    /** Signs the user of the host file in; only logs when it names none. */
    void signIn();
    /** Signs a user in who came with a password. Empty, or why not: for people. */
    QString signIn(const QString& userId, const QString& password);

private:
    void setUser(const HostUser& user);

    const HostUser m_deployed;
    ShellApplication& m_application;
    ZeoliteHost& m_services;
};

} // namespace shell
