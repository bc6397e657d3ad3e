#include "shell/control/ShellMethods.h"

#include "shell/UserSession.h"
#include "shell/control/StateReport.h"

#include "nheliostat/framework/ShellApplication.h"
#include "nheliostat/framework/ShellRecovery.h"
#include "nrt/NrtHost.h"
#include "zeolite/ZeoliteHost.h"

#include <utility>

namespace shell {

namespace {

using rpc::Outcome;
using Type = rpc::Parameter::Type;

using SetFlag = void (*)(const QString& name, bool on);

rpc::Method flagMethod(const QString& method, SetFlag set)
{
    return rpc::immediateMethod(
        method, {{QStringLiteral("name"), Type::Text}, {QStringLiteral("value"), Type::Boolean}},
        [set](const QJsonObject& params) {
            set(params.value(QLatin1String("name")).toString(),
                params.value(QLatin1String("value")).toBool());
            return QJsonValue();
        });
}

QVector<rpc::Parameter> userParameters()
{
    const auto optional = [](const QString& name, Type type) { return rpc::Parameter{name, type, false}; };
    return {optional(QStringLiteral("userId"), Type::Text),
            optional(QStringLiteral("loggedIn"), Type::Boolean),
            optional(QStringLiteral("sessionKey"), Type::Text),
            optional(QStringLiteral("cookies"), Type::Text),
            optional(QStringLiteral("localDataDir"), Type::Text),
            optional(QStringLiteral("cacheRoot"), Type::Text)};
}

} // namespace

ShellMethods::ShellMethods(ShellApplication& application, PageDirectory& pages, ZeoliteHost& services,
                           UserSession& user, std::function<void()> quit)
    : m_application(application)
    , m_pages(pages)
    , m_services(services)
    , m_user(user)
    , m_quit(std::move(quit))
{
}

QVector<rpc::Method> ShellMethods::methods()
{
    return {rpc::immediateMethod(QStringLiteral("shell.state"), {},
                                 [this](const QJsonObject&) { return state(); }),
            rpc::immediateMethod(QStringLiteral("shell.quit"), {},
                                 [this](const QJsonObject&) {
                                     m_quit();
                                     return QJsonValue();
                                 }),
            rpc::immediateMethod(QStringLiteral("config.set"),
                                 {{QStringLiteral("group"), Type::Integer},
                                  {QStringLiteral("item"), Type::Integer},
                                  {QStringLiteral("value"), Type::Object}},
                                 [this](const QJsonObject& params) { return setConfig(params); }),
            flagMethod(QStringLiteral("switch.set"), &nrt::host::setProductSwitch),
            flagMethod(QStringLiteral("feature.set"), &nrt::host::setFeature),
            rpc::immediateMethod(QStringLiteral("user.set"), userParameters(),
                                 [this](const QJsonObject& params) { return setUser(params); })};
}

Outcome ShellMethods::state() const
{
    QJsonObject state = shellState(m_application, m_pages);
    state.insert(QStringLiteral("recoverable"), m_application.recovery().offered());
    return QJsonValue(state);
}

Outcome ShellMethods::setConfig(const QJsonObject& params)
{
    m_services.configCentre().set(params.value(QLatin1String("group")).toInt(),
                                  params.value(QLatin1String("item")).toInt(),
                                  params.value(QLatin1String("value")).toObject());
    return QJsonValue();
}

Outcome ShellMethods::setUser(const QJsonObject& params)
{
    const QString error = m_user.merge(params);
    if (!error.isEmpty())
        return rpc::Failure{rpc::InvalidParams, error};
    return QJsonValue();
}

} // namespace shell
