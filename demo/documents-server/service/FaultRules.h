#pragma once

#include <chrono>
#include <map>
#include <optional>

#include <QByteArray>
#include <QJsonObject>

#include "store/Result.h"

namespace documents {

/** What is to go wrong with a request; the members combine. */
struct Fault
{
    std::optional<int> status;      ///< answered with this status, the request has no effect
    std::optional<QByteArray> body; ///< sent instead of the reply's body, as something not to be stored
    QByteArray location;            ///< of a redirect; empty: none
    std::chrono::milliseconds delay{0};
    std::optional<qint64> cutAfter; ///< bytes of the reply's body, then the connection is closed; of the
                                    ///< request's when that takes effect while it arrives
    bool reset = false;             ///< the connection is reset, the request has no effect
    std::optional<qint64> times;    ///< requests that it is still there for; none: every one
};

/** Faults by the beginning of the request target (path and query, as sent); the longest beginning wins. */
class FaultRules
{
public:
    /**
     * Replaces all rules: {"/path-prefix": {"status": 500, "location": URL, "body": text, "size": bytes,
     * "delayMs": n, "cutAfter": bytes, "reset": true, "times": n}, …}, every member optional; {} ends all
     * faults. "size" sends a body of that many bytes, the text followed by filler. A rule used "times" times
     * is over. On a mistake nothing changes and the error names the member. The control resource itself
     * cannot be given a fault.
     */
    Failure setRules(const QJsonObject& rules);

    /** The fault for a request, which counts as one of its times. */
    std::optional<Fault> take(const QByteArray& target);

private:
    std::map<QByteArray, Fault> m_rules;
};

} // namespace documents
