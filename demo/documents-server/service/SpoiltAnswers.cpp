#include "service/SpoiltAnswers.h"

#include <algorithm>
#include <utility>

#include "http/Replies.h"

namespace documents {
namespace {

/** Puts the fault's body in the place of the reply's, as something that nobody keeps. */
void replaceBody(HttpReply& reply, const QByteArray& body)
{
    reply.status = reply.status == 304 || reply.status == 206 ? 200 : reply.status;
    reply.body = body;
    reply.file.reset();
    const auto describesBody = [](const auto& field) {
        return field.first == "ETag" || field.first == "Last-Modified" || field.first == "Cache-Control" ||
               field.first == "Content-Range";
    };
    reply.headers.erase(std::remove_if(reply.headers.begin(), reply.headers.end(), describesBody),
                        reply.headers.end());
    reply.headers.emplace_back("Cache-Control", "no-store");
}

void spoil(HttpReply& reply, const Fault& fault)
{
    if (fault.body)
        replaceBody(reply, *fault.body);
    if (!fault.location.isEmpty())
        reply.headers.emplace_back("Location", fault.location);
}

/** Passes the body on and spoils the answer. */
class SpoiltSink final : public BodySink
{
public:
    SpoiltSink(std::unique_ptr<BodySink> sink, Fault fault)
        : m_sink(std::move(sink))
        , m_fault(std::move(fault))
    {
    }

    bool take(const char* data, std::size_t size) override { return m_sink->take(data, size); }
    Answer finish() override { return spoilt(m_sink->finish(), m_fault); }

private:
    std::unique_ptr<BodySink> m_sink;
    Fault m_fault;
};

} // namespace

bool preventsEffect(const Fault& fault)
{
    return fault.status || fault.reset;
}

Answer preventedAnswer(const Fault& fault, const QByteArray& target)
{
    Answer answer;
    if (fault.status)
        answer.reply = errorReply(target, *fault.status, QStringLiteral("Fault"),
                                  QStringLiteral("The service was told to fail here."));
    answer.reset = fault.reset;
    return spoilt(std::move(answer), fault);
}

Answer spoilt(Answer answer, const Fault& fault)
{
    if (answer.work) {
        answer.work = [work = std::move(answer.work), fault] {
            auto reply = work();
            if (reply)
                spoil(*reply, fault);
            return reply;
        };
    } else {
        spoil(answer.reply, fault);
    }
    answer.delay = fault.delay;
    answer.cutAfter = fault.cutAfter;
    return answer;
}

Reception spoilt(Reception reception, const Fault& fault)
{
    if (fault.cutAfter)
        reception.cutAt = static_cast<std::uint64_t>(*fault.cutAfter);
    Fault rest = fault;
    rest.cutAfter.reset();
    if (reception.refusal)
        reception.refusal = spoilt(std::move(*reception.refusal), rest);
    if (reception.sink)
        reception.sink = std::make_unique<SpoiltSink>(std::move(reception.sink), rest);
    return reception;
}

} // namespace documents
