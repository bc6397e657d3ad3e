#include "gateway/HandlerExchange.h"

namespace gateway {

HandlerExchange::HandlerExchange(std::string url, std::uint64_t serial,
                                 std::weak_ptr<AnswerReceiver> receiver, std::shared_ptr<Mailbox> mailbox)
    : m_url(std::move(url))
    , m_serial(serial)
    , m_receiver(std::move(receiver))
    , m_mailbox(std::move(mailbox))
{
}

HandlerExchange::~HandlerExchange()
{
    if (m_state != State::Awaiting)
        return;
    m_mailbox->post([serial = m_serial, receiver = m_receiver] {
        if (const auto alive = receiver.lock())
            alive->deliver(serial, std::nullopt);
    });
}

QString HandlerExchange::requestUrl() const
{
    return QString::fromUtf8(m_url.data(), static_cast<int>(m_url.size()));
}

void HandlerExchange::complete(const QVariantMap& answer)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_state == State::Ended || m_earlyAnswer)
            return;
        if (m_state == State::Collecting) {
            m_earlyAnswer = answer;
            return;
        }
        m_state = State::Ended;
    }
    m_mailbox->post([serial = m_serial, receiver = m_receiver, answer = std::optional(answer)] {
        if (const auto alive = receiver.lock())
            alive->deliver(serial, answer);
    });
}

std::optional<QVariantMap> HandlerExchange::takeEarlyAnswer()
{
    const std::lock_guard lock(m_mutex);
    m_state = m_earlyAnswer ? State::Ended : State::Awaiting;
    return std::move(m_earlyAnswer);
}

void HandlerExchange::abandon()
{
    const std::lock_guard lock(m_mutex);
    m_state = State::Ended;
    m_earlyAnswer.reset();
}

} // namespace gateway
