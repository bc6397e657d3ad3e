#pragma once

#include "nheliostat/NHelioMainWindow.h"

class QAction;

/** The strip above the pages; holds the tab bar. */
class ShellHeaderBar final : public NHelioHeaderBar
{
    Q_OBJECT
public:
    /** Takes the tab bar in as its child. */
    explicit ShellHeaderBar(NHelioTabBar* tabBar, QWidget* parent = nullptr);

    int mode() const override { return m_mode; }
    /** 0 or 1, see `mode`; others change nothing. */
    void setMode(int mode);
    /** A button at the end of the strip; the action is not owned. */
    void addTool(QAction* action);

private:
    int m_mode = 0;
};
