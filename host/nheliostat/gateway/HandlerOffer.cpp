#include "gateway/HandlerOffer.h"

#include "gateway/ViewRegistry.h"

namespace gateway {

HandlerOffer offerToHandlers(const ViewRoutes& routes, const std::string& url, std::uint64_t& serial,
                             const std::weak_ptr<AnswerReceiver>& receiver,
                             const std::shared_ptr<Mailbox>& mailbox)
{
    for (const std::shared_ptr<const RegisteredHandler>& entry : routes.handlers) {
        if (!urlStartsWith(url, entry->urlPrefix))
            continue;
        const auto exchange = std::make_shared<HandlerExchange>(url, ++serial, receiver, mailbox);
        bool taken = false;
        try {
            taken = entry->handler(exchange);
        } catch (...) {
            // The next handler or the network answers instead.
        }
        if (taken)
            return {true, exchange->takeEarlyAnswer()};
        exchange->abandon();
    }
    return {};
}

} // namespace gateway
