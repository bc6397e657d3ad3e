#pragma once

#include "shell/control/RpcMethod.h"

#include <functional>

class ShellApplication;
class ZeoliteHost;

namespace shell {

class PageDirectory;
class UserSession;

/** The control methods that deal with the shell as a whole and with the deployment it runs in. */
class ShellMethods
{
public:
    /** `quit` has the program end later. */
    ShellMethods(ShellApplication& application, PageDirectory& pages, ZeoliteHost& services,
                 UserSession& user, std::function<void()> quit);

    QVector<rpc::Method> methods();

private:
    rpc::Outcome state() const;
    rpc::Outcome setConfig(const QJsonObject& params);
    rpc::Outcome setUser(const QJsonObject& params);

    ShellApplication& m_application;
    PageDirectory& m_pages;
    ZeoliteHost& m_services;
    UserSession& m_user;
    std::function<void()> m_quit;
};

} // namespace shell
