#pragma once

#include "zeolite/NAccountSdkProxy.h"

class ShellApplication;

namespace shell {

/** Authenticates requests with the session of the shell's user. `application` outlives it. */
class AccountAuth final : public NAccountAuthProvider
{
public:
    explicit AccountAuth(const ShellApplication& application)
        : m_application(application)
    {
    }

    bool prepare(QVariantMap& headers, const QString& method, const QString& url) override;
    bool sign(QVariantMap& headers, const QString& url) override;

private:
    const ShellApplication& m_application;
};

} // namespace shell
