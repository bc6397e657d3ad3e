#pragma once

#include "nheliostat/NHelioApplication.h"

class ShellCloudSvrProxy;

/** The account as the cloud service proxy knows it; follows its login signal. */
class ShellAccount final : public NHelioAccount
{
    Q_OBJECT
public:
    /** `proxy` is not owned and outlives the account. */
    explicit ShellAccount(const ShellCloudSvrProxy& proxy, QObject* parent = nullptr);

    bool isLoggedIn() const override;
    QString sessionId() const override;

private:
    const ShellCloudSvrProxy& m_proxy;
};
