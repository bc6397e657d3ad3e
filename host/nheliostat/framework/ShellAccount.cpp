#include "nheliostat/framework/ShellAccount.h"

#include "nheliostat/framework/ShellCloudSvrProxy.h"

ShellAccount::ShellAccount(const ShellCloudSvrProxy& proxy, QObject* parent)
    : NHelioAccount(parent)
    , m_proxy(proxy)
{
    connect(&proxy, &ShellCloudSvrProxy::loginStatusChanged, this, &ShellAccount::signalLoginStatusChanged);
}

bool ShellAccount::isLoggedIn() const
{
    return m_proxy.user().loggedIn;
}

QString ShellAccount::sessionId() const
{
    return m_proxy.user().sessionKey;
}
