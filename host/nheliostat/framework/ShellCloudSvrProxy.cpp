#include "nheliostat/framework/ShellCloudSvrProxy.h"

#include <utility>

ShellCloudSvrProxy::ShellCloudSvrProxy(NHelioUserInfo user, QObject* parent)
    : NHelioCloudSvrProxy(parent)
    , m_user(std::move(user))
{
}

void ShellCloudSvrProxy::setUser(const NHelioUserInfo& user)
{
    m_user = user;
    Q_EMIT loginStatusChanged();
}

bool ShellCloudSvrProxy::currentUserInfo(NHelioUserInfo& info) const
{
    info = m_user;
    return true;
}
