#pragma once

#include "shell/control/RpcMethod.h"

class NHelioAppPage;
class ShellApplication;

namespace shell {

class PageDirectory;

/** The control methods that deal with pages. Lives as long as the dispatcher that has its methods. */
class PageMethods
{
public:
    PageMethods(ShellApplication& application, PageDirectory& pages);

    QVector<rpc::Method> methods();

private:
    /** An operation on the page that the parameter "page" names. */
    using PageOperation = rpc::Outcome (PageMethods::*)(NHelioAppPage& page, const QJsonObject& params);

    rpc::Method pageMethod(const QString& name, QVector<rpc::Parameter> parameters, PageOperation operation);
    rpc::Outcome create(const QJsonObject& params);
    rpc::Outcome notify(NHelioAppPage& page, const QJsonObject& params);
    rpc::Outcome openFiles(NHelioAppPage& page, const QJsonObject& params);
    rpc::Outcome load(NHelioAppPage& page, const QJsonObject& params);
    rpc::Outcome release(NHelioAppPage& page, const QJsonObject& params);
    rpc::Outcome invoke(NHelioAppPage& page, const QJsonObject& params);
    rpc::Outcome state(NHelioAppPage& page, const QJsonObject& params);
    rpc::Outcome screenshot(NHelioAppPage& page, const QJsonObject& params);
    rpc::Outcome crash(NHelioAppPage& page, const QJsonObject& params);
    void close(const QJsonObject& params, const rpc::Reply& reply);
    void evaluate(const QJsonObject& params, const rpc::Reply& reply);

    ShellApplication& m_application;
    PageDirectory& m_pages;
};

} // namespace shell
