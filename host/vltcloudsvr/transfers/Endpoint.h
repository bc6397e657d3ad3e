#pragma once

#include "vltcloudsvr/common/Calls.h"
#include "vltcloudsvr/common/Result.h"

#include <string>

namespace vlt::cloudsvr {

/** Where the documents service of a caller is, and as whom it is asked. */
struct Endpoint
{
    bool isTls = false;
    bool isMapped = false;   //!< to an address of the caller's choice: its certificate is not looked at
    std::string host;        //!< that the service is called
    std::string connectHost; //!< where it is
    std::string connectPort;
    std::string hostHeader;
    std::string basePath; //!< no "/" at its end
    std::string cookies;  //!< may be empty

    bool isSamePlace(const Endpoint& other) const
    {
        return isTls == other.isTls && isMapped == other.isMapped && host == other.host &&
               connectHost == other.connectHost && connectPort == other.connectPort;
    }
};

/** http and https; the caller's map is looked up by "host:port", then by "host". */
Result<Endpoint> endpointOf(const Caller& caller);

} // namespace vlt::cloudsvr
