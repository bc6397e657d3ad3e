#pragma once

#include "shell/control/HostNotifications.h"
#include "shell/control/LineReader.h"
#include "shell/control/LineWriter.h"
#include "shell/control/PageMethods.h"
#include "shell/control/RpcDispatcher.h"
#include "shell/control/ShellMethods.h"
#include "shell/system/StandardStreams.h"

#include <QObject>

#include <optional>

namespace shell {

class DialogAnswers;

/**
 * The control protocol on a pair of streams: JSON-RPC requests in, responses and notifications out.
 * Notifications begin with the construction; requests are read from `serve` on. User-interface thread.
 */
class ControlSession final : public QObject
{
    Q_OBJECT
public:
    ControlSession(ControlStreams streams, ZeoliteHost& services, PageDirectory& pages,
                   QObject* parent = nullptr);

    /** Starts to obey; to be called once. The arguments live until the last event was handled. */
    void serve(ShellApplication& application, UserSession& user, DialogAnswers& answers);
    /** Adds methods before `serve`. */
    void add(const QVector<rpc::Method>& methods);
    HostNotifications& notifications() { return m_notifications; }

Q_SIGNALS:
    /** Nobody will ask for anything any more. */
    void ended();
    /** The program is to end. */
    void quitAsked();

private:
    void onLine(const QByteArray& line);
    void onLineTooLong();

    ZeoliteHost& m_services;
    PageDirectory& m_pages;
    FileDescriptor m_input; //!< until the reader has it
    LineWriter m_writer;
    HostNotifications m_notifications;
    rpc::Dispatcher m_dispatcher;
    std::optional<PageMethods> m_pageMethods;
    std::optional<ShellMethods> m_shellMethods;
    std::optional<LineReader> m_reader;
};

} // namespace shell
