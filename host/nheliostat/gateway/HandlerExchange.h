#pragma once

#include "gateway/Mailbox.h"

#include "zeolite/IWebViewResourceProviderCallback.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace gateway {

/** Gets the answers that come after the handler has returned. Called on its worker's thread. */
class AnswerReceiver
{
public:
    virtual ~AnswerReceiver() = default;
    /** No answer: the callback was released without one. `serial` is that of the exchange. */
    virtual void deliver(std::uint64_t serial, const std::optional<QVariantMap>& answer) = 0;
};

/**
 * The callback of one request offered to one handler.
 *
 * While the handler runs, an answer is kept here for the connection to pick up without a detour; afterwards
 * it travels through the worker's mailbox. Holds the connection weakly: it may be gone by then.
 */
class HandlerExchange final : public IWebViewResourceProviderCallback
{
public:
    HandlerExchange(std::string url, std::uint64_t serial, std::weak_ptr<AnswerReceiver> receiver,
                    std::shared_ptr<Mailbox> mailbox);
    ~HandlerExchange() override;

    QString requestUrl() const override;
    void complete(const QVariantMap& answer) override;

    /** The handler has taken the request and returned: gives the answer it has left, if any. Called once. */
    std::optional<QVariantMap> takeEarlyAnswer();
    /** The handler has declined: nothing that happens to this callback matters any more. */
    void abandon();

private:
    enum class State { Collecting, Awaiting, Ended };

    const std::string m_url;
    const std::uint64_t m_serial;
    const std::weak_ptr<AnswerReceiver> m_receiver;
    const std::shared_ptr<Mailbox> m_mailbox;
    std::mutex m_mutex;
    State m_state = State::Collecting;
    std::optional<QVariantMap> m_earlyAnswer;
};

} // namespace gateway
