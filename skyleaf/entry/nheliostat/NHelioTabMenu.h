#pragma once

#include <QMenu>

/**
 * The menu of a tab. A sub page adds its actions in `doAttachContextMenuActions`, the shell's own through the
 * operations below; each adds its actions once. What it leaves out the shell adds at the end.
 */
class NHelioTabMenu : public QMenu
{
    Q_OBJECT
public:
    using QMenu::QMenu;

    /** Restarts the page. */
    virtual void addFixAction() = 0;
    /** Into a window of its own and back into the work area, whichever is possible. */
    virtual void addWindowActions() = 0;
    virtual void addCloseAction() = 0;
    virtual void addCloseOthersAction() = 0;
};
