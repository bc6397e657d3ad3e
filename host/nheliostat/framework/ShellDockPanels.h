#pragma once

#include "nheliostat/NHelioMainWindow.h"

class AssistantPanel;
class QAction;
class QDockWidget;

/**
 * The dock panels of a window: one container at its right side, with the assistant in it. It opens itself
 * when the first message arrives. Deployments hide it with the switch "SorrelDockPanel".
 */
class ShellDockPanels final : public NHelioDockPanelUtility
{
public:
    /** The dock becomes a child of the window. */
    explicit ShellDockPanels(QMainWindow& window);

    QString getDefaultDockContainerId() const override;
    /** Takes the event "dockPanelNotification" for the receiver "dockpanel_sorrel" (see AssistantMessage). */
    bool notifyDockMessage(const QString& containerId, const QString& event, const QString& message,
                           const QString& source, QObject* receiver) override;
    bool isDockPanelEntryVisible(const QString& panelId) const override;

    /** Shows and hides the dock; not visible itself when the entry is not. */
    QAction* toggleAction() const;
    void setDark(bool dark);

private:
    AssistantPanel* m_assistant;
    QDockWidget* m_dock;
};
