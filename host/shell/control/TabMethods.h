#pragma once

#include "shell/control/RpcMethod.h"

class NHelioAppPage;
class ShellApplication;
class ShellTab;

namespace shell {

class PageDirectory;

/** The control methods that deal with tabs and quick access. Lives as long as the dispatcher that has them.
 */
class TabMethods
{
public:
    TabMethods(ShellApplication& application, PageDirectory& pages);

    QVector<rpc::Method> methods();

private:
    using PageOperation = rpc::Outcome (TabMethods::*)(NHelioAppPage& page, const QJsonObject& params);

    rpc::Method pageMethod(const QString& name, QVector<rpc::Parameter> parameters, PageOperation operation);
    rpc::Outcome menu(NHelioAppPage& page, const QJsonObject& params);
    rpc::Outcome trigger(NHelioAppPage& page, const QJsonObject& params);
    rpc::Outcome select(NHelioAppPage& page, const QJsonObject& params);
    rpc::Outcome move(NHelioAppPage& page, const QJsonObject& params);
    rpc::Outcome icon(NHelioAppPage& page, const QJsonObject& params);
    rpc::Outcome listQuickAccess() const;
    rpc::Outcome openQuickAccess(const QString& fileId);

    ShellApplication& m_application;
    PageDirectory& m_pages;
};

} // namespace shell
