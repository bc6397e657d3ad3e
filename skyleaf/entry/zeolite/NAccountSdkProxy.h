#pragma once

#include <QString>
#include <QVariantMap>

/** Authenticates requests with the session of the account. User-interface thread. */
class NAccountAuthProvider
{
public:
    virtual ~NAccountAuthProvider() = default;

    /** Puts what the account needs into the headers, the cookie text under "Cookie"; false when nobody is
     * signed in. */
    virtual bool prepare(QVariantMap& headers, const QString& method, const QString& url) = 0;
    /** Signs the prepared headers; false when they cannot be signed. */
    virtual bool sign(QVariantMap& headers, const QString& url) = 0;
};

/** The account SDK. */
class NAccountSdkProxy
{
public:
    virtual ~NAccountSdkProxy() = default;
    /** May be null. Owned by the SDK. */
    virtual NAccountAuthProvider* getAuthProvider() = 0;
};
