#pragma once

#include "gateway/RequestGateway.h"

#include <chrono>
#include <string>
#include <string_view>

namespace gateway {

class RequestHead;

/** Collects one request's record for the observer; does nothing at all without one. */
class RequestTrace
{
public:
    using Observer = std::function<void(const GatewayRequestRecord&)>;

    explicit RequestTrace(const Observer& observer);

    /** The request's last byte has been read. `viewId` is empty for a request without credentials. */
    void begin(const RequestHead& head, std::string_view viewId);
    void setUrl(std::string_view url);
    /** Forgets the request: it is none that is reported. */
    void discard() { m_open = false; }
    /** Reports the request, once; a trace that has not begun is silent. */
    void finish(GatewayRequestRecord::AnsweredBy by, int status, qint64 bytes);

private:
    const Observer& m_observer;
    std::chrono::steady_clock::time_point m_start;
    QByteArray m_viewId;
    QByteArray m_method;
    QByteArray m_url;
    bool m_open = false;
};

} // namespace gateway
