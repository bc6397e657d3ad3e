#pragma once

#include "nheliostat/NHelioMainWindow.h"

/** The strip above the pages; holds the tab bar. */
class ShellHeaderBar final : public NHelioHeaderBar
{
    Q_OBJECT
public:
    /** Takes the tab bar in as its child. */
    explicit ShellHeaderBar(NHelioTabBar* tabBar, QWidget* parent = nullptr);

    int mode() const override { return 0; }
};
