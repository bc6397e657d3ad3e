#pragma once

#include "gateway/HandlerExchange.h"

namespace gateway {

struct ViewRoutes;

/** What came of offering a request to a view's handlers. */
struct HandlerOffer
{
    bool taken = false;
    std::optional<QVariantMap> answer = {}; //!< given at once; otherwise it is delivered later
};

/**
 * Asks the handlers for `url`, newest first, until one takes the request. A handler that throws has not taken
 * it. Each is asked under a serial of its own; `serial` is the last one used.
 */
HandlerOffer offerToHandlers(const ViewRoutes& routes, const std::string& url, std::uint64_t& serial,
                             const std::weak_ptr<AnswerReceiver>& receiver,
                             const std::shared_ptr<Mailbox>& mailbox);

} // namespace gateway
