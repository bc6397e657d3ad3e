#include "nheliostat/framework/ShellDockPanels.h"

#include "nheliostat/framework/AssistantMessage.h"
#include "nheliostat/framework/AssistantPanel.h"
#include "nheliostat/framework/ShellLook.h"
#include "nrt/product.h"
#include "zeolite/NxLoggerLite.h"

#include <QAction>
#include <QCoreApplication>
#include <QDockWidget>

namespace {

const QString containerId = QStringLiteral("dockcontainer_right");
const QString assistantId = QStringLiteral("dockpanel_sorrel");

QString title()
{
    return QCoreApplication::translate("ShellDockPanels", "Assistant");
}

bool refuse(const QString& why)
{
    NxLoggerLite::writeWarning(QStringLiteral("nheliostat"), QStringLiteral("dock message: ") + why);
    return false;
}

} // namespace

ShellDockPanels::ShellDockPanels(QMainWindow& window)
    : m_assistant(new AssistantPanel)
    , m_dock(new QDockWidget(title(), &window))
{
    constexpr int usualWidth = 320;
    constexpr int leastWidth = 240;
    m_dock->setObjectName(QStringLiteral("assistantDock"));
    m_dock->setFeatures(QDockWidget::DockWidgetClosable);
    m_dock->setAllowedAreas(Qt::RightDockWidgetArea);
    m_assistant->setMinimumWidth(leastWidth);
    m_dock->setWidget(m_assistant);
    window.addDockWidget(Qt::RightDockWidgetArea, m_dock);
    window.resizeDocks({m_dock}, {usualWidth}, Qt::Horizontal);
    m_dock->hide();
    toggleAction()->setObjectName(QStringLiteral("assistantToggle"));
    toggleAction()->setVisible(isDockPanelEntryVisible(assistantId));
}

QString ShellDockPanels::getDefaultDockContainerId() const
{
    return containerId;
}

bool ShellDockPanels::notifyDockMessage(const QString& container, const QString& event,
                                        const QString& message, const QString& source, QObject*)
{
    if (container != containerId)
        return refuse(QStringLiteral("no container \"%1\"").arg(container));
    if (event != QLatin1String("dockPanelNotification"))
        return refuse(QStringLiteral("nobody takes the event \"%1\"").arg(event));
    if (!isDockPanelEntryVisible(assistantId))
        return refuse(QStringLiteral("the assistant is not offered"));
    const auto parsed = AssistantMessage::parse(message, assistantId, source, QDateTime::currentDateTime());
    if (!parsed)
        return refuse(QStringLiteral("malformed, or for an unknown receiver"));
    if (m_assistant->count() == 0)
        m_dock->show();
    m_assistant->add(*parsed);
    return true;
}

bool ShellDockPanels::isDockPanelEntryVisible(const QString& panelId) const
{
    return panelId == assistantId &&
           nrt::product::getFuncSwitchState(QStringLiteral("SorrelDockPanel"), true);
}

QAction* ShellDockPanels::toggleAction() const
{
    return m_dock->toggleViewAction();
}

void ShellDockPanels::setDark(bool dark)
{
    toggleAction()->setIcon(ShellLook::icon(QStringLiteral("panel"), dark));
}
