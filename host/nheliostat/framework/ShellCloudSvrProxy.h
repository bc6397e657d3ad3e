#pragma once

#include "nheliostat/NHelioCloudSvrProxy.h"

/** Knows the user that the shell was told of. */
class ShellCloudSvrProxy final : public NHelioCloudSvrProxy
{
    Q_OBJECT
public:
    explicit ShellCloudSvrProxy(NHelioUserInfo user, QObject* parent = nullptr);

    const NHelioUserInfo& user() const { return m_user; }
    /** Takes the user and raises loginStatusChanged. */
    void setUser(const NHelioUserInfo& user);
    bool currentUserInfo(NHelioUserInfo& info) const override;

private:
    NHelioUserInfo m_user;
};
