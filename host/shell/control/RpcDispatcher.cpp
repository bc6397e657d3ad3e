#include "shell/control/RpcDispatcher.h"

#include <memory>
#include <utility>

namespace shell::rpc {

namespace {

/** A call that waits for its outcome. */
class OpenCall
{
public:
    OpenCall(QJsonValue id, Dispatcher::SendLine send)
        : m_id(std::move(id))
        , m_send(std::move(send))
    {
    }
    ~OpenCall() { settle(Failure{OperationFailed, QStringLiteral("the call ended without a result")}); }
    OpenCall(const OpenCall&) = delete;
    OpenCall& operator=(const OpenCall&) = delete;

    void settle(const Outcome& outcome)
    {
        if (std::exchange(m_settled, true) || m_id.isUndefined())
            return;
        m_send(responseLine(m_id, outcome));
    }

private:
    QJsonValue m_id;
    Dispatcher::SendLine m_send;
    bool m_settled = false;
};

} // namespace

Dispatcher::Dispatcher(SendLine send)
    : m_send(std::move(send))
{
}

void Dispatcher::add(const QVector<Method>& methods)
{
    for (const Method& method : methods)
        m_methods.insert(method.name, method);
}

void Dispatcher::handleLine(const QByteArray& line)
{
    const auto parsed = parseLine(line);
    if (const auto* bad = std::get_if<BadLine>(&parsed)) {
        m_send(responseLine(bad->id, bad->failure));
        return;
    }
    const Request& request = std::get<Request>(parsed);
    const Reply reply = makeReply(request);
    const auto method = m_methods.constFind(request.method);
    if (method == m_methods.constEnd()) {
        reply(Failure{MethodNotFound, QStringLiteral("unknown method \"%1\"").arg(request.method)});
        return;
    }
    const QString error = checkParameters(method->parameters, request.params);
    if (error.isEmpty())
        method->run(request.params.toObject(), reply);
    else
        reply(Failure{InvalidParams, error});
}

void Dispatcher::refuseLine(const Failure& failure)
{
    m_send(responseLine({}, failure));
}

Reply Dispatcher::makeReply(const Request& request) const
{
    const auto call = std::make_shared<OpenCall>(request.id, m_send);
    return [call](const Outcome& outcome) { call->settle(outcome); };
}

} // namespace shell::rpc
