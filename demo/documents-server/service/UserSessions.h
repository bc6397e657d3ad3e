#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QSet>
#include <QStringList>

#include "store/Result.h"

namespace documents {

/**
 * Which users' sessions the service accepts. It knows no users: a session is a key in the cookie "vlt_sid".
 * For one thread.
 */
class UserSessions
{
public:
    /** Only these keys are accepted; with none of them, any that is not empty. */
    explicit UserSessions(const QStringList& keys = {});

    /** Whether a "Cookie" field brings a session. */
    bool accepts(const QByteArray& cookieField) const;

    /** Takes {"add": [keys], "remove": [keys]}, either may be missing. Anything else is an error and changes
     * nothing. A removed key is refused until it is added again. */
    Failure change(const QJsonObject& object);

private:
    bool m_isRestricted;
    QSet<QByteArray> m_named; ///< the keys that are accepted when restricted, else those that are refused
};

} // namespace documents
