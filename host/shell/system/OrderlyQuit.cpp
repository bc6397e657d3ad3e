#include "shell/system/OrderlyQuit.h"

#include "nheliostat/framework/ShellApplication.h"
#include "zeolite/NxLoggerLite.h"

#include <QCoreApplication>
#include <QPointer>

#include <chrono>

namespace shell {

OrderlyQuit::OrderlyQuit(ShellApplication& application, bool attended, QObject* parent)
    : QObject(parent)
    , m_application(application)
    , m_attended(attended)
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(std::chrono::seconds(patienceSeconds));
    connect(&m_patience, &QTimer::timeout, this, &OrderlyQuit::giveUp);
}

void OrderlyQuit::request()
{
    if (m_patience.isActive())
        return giveUp();
    if (!m_attended)
        return order();
    m_patience.start();
    m_application.leaveAllPages(LeaveRequest::Manner::Ask, [self = QPointer<OrderlyQuit>(this)](bool all) {
        if (!self) // the question went with its window, at the end
            return;
        self->m_patience.stop();
        if (all)
            QCoreApplication::quit();
    });
}

void OrderlyQuit::order()
{
    m_patience.start();
    m_application.leaveAllPages(LeaveRequest::Manner::Tell, [](bool) { QCoreApplication::quit(); });
}

void OrderlyQuit::giveUp()
{
    NxLoggerLite::writeWarning(QStringLiteral("shell"),
                               QStringLiteral("ended before all documents were asked"));
    QCoreApplication::quit();
}

} // namespace shell
