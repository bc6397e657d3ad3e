#pragma once

#include "nheliostat/NHelioTabMenu.h"

#include <QPointer>

class ShellTab;

/** The menu of one tab. Its actions do nothing once the tab is gone. */
class ShellTabMenu final : public NHelioTabMenu
{
    Q_OBJECT
public:
    /** `hasOthers`: there are other tabs that could be closed. */
    ShellTabMenu(ShellTab& tab, bool hasOthers, QWidget* parent);

    void addFixAction() override;
    /** Raises `windowActionsAsked` for whoever can move pages, if the sub page can be moved. */
    void addWindowActions() override;
    void addCloseAction() override;
    void addCloseOthersAction() override;
    /** Adds what every tab offers and the sub page left out. */
    void complete();

Q_SIGNALS:
    void windowActionsAsked();
    void closeOthersChosen();

private:
    QAction* add(const QString& name, const QString& text);

    QPointer<ShellTab> m_tab;
    const bool m_hasOthers;
    bool m_hasWindowActions = false;
};
