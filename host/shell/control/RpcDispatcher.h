#pragma once

#include "shell/control/RpcMethod.h"

#include <QHash>

#include <functional>

namespace shell::rpc {

/**
 * Runs the methods that lines ask for and gives the responses to a function, as lines. Every request with an
 * id gets exactly one response: a method that drops its reply unused fails the call. User-interface thread.
 */
class Dispatcher
{
public:
    using SendLine = std::function<void(const QByteArray& line)>;

    /** `send` must live as long as the last open call. */
    explicit Dispatcher(SendLine send);

    void add(const QVector<Method>& methods);
    void handleLine(const QByteArray& line);
    /** Answers a line that was refused unread. */
    void refuseLine(const Failure& failure);

private:
    Reply makeReply(const Request& request) const;

    SendLine m_send;
    QHash<QString, Method> m_methods;
};

} // namespace shell::rpc
