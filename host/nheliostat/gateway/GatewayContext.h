#pragma once

#include "gateway/Credentials.h"
#include "gateway/RequestTarget.h"
#include "gateway/TlsContexts.h"
#include "gateway/ViewRegistry.h"

#include <map>
#include <set>
#include <string>

namespace gateway {

/** What all workers of one gateway share. Fixed once made, except for the registry, which guards itself. */
class GatewayContext
{
public:
    /** Throws std::runtime_error when no identity can be made. */
    explicit GatewayContext(const GatewayOptions& options);

    bool isIntercepted(const HostPort& endpoint) const
    {
        return m_interceptedHosts.count(endpoint.host) != 0;
    }
    /** The "address:port" to connect to instead of looking `endpoint` up; nullptr when there is none. */
    const std::string* mappedAddress(const HostPort& endpoint) const;

    const GatewayLimits limits;
    const Credentials credentials;
    const TlsContexts tls;
    const std::function<void(const GatewayRequestRecord&)> observer;
    ViewRegistry views;

private:
    std::set<std::string> m_interceptedHosts;
    std::map<std::string, std::string> m_resolve;
};

} // namespace gateway
