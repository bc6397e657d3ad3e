#include "shell/control/ControlSession.h"

#include "shell/control/DialogMethods.h"

#include <utility>

namespace shell {

ControlSession::ControlSession(ControlStreams streams, ZeoliteHost& services, PageDirectory& pages,
                               QObject* parent)
    : QObject(parent)
    , m_services(services)
    , m_pages(pages)
    , m_input(std::move(streams.input))
    , m_writer(std::move(streams.output))
    , m_notifications(services, pages, m_writer)
    , m_dispatcher([this](const QByteArray& line) { m_writer.write(line); })
{
}

void ControlSession::serve(ShellApplication& application, UserSession& user, DialogAnswers& answers)
{
    m_pageMethods.emplace(application, m_pages);
    m_shellMethods.emplace(application, m_pages, m_services, user, [this] { Q_EMIT quitAsked(); });
    m_dispatcher.add(m_pageMethods->methods());
    m_dispatcher.add(m_shellMethods->methods());
    m_dispatcher.add({dialogAnswerMethod(answers)});
    m_reader.emplace(std::move(m_input));
    connect(&*m_reader, &LineReader::lineRead, this, &ControlSession::onLine);
    connect(&*m_reader, &LineReader::lineTooLong, this, &ControlSession::onLineTooLong);
    connect(&*m_reader, &LineReader::ended, this, &ControlSession::ended);
}

void ControlSession::add(const QVector<rpc::Method>& methods)
{
    m_dispatcher.add(methods);
}

void ControlSession::onLine(const QByteArray& line)
{
    m_dispatcher.handleLine(line);
}

void ControlSession::onLineTooLong()
{
    m_dispatcher.refuseLine(
        {rpc::InvalidRequest,
         QStringLiteral("the line is longer than %1 bytes").arg(LineReader::maxLineBytes)});
}

} // namespace shell
