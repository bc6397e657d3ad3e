#pragma once

#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/framework/ShellDockPanels.h"
#include "nheliostat/framework/ShellWorkAreaManager.h"

class QKeySequence;
class ShellCentralArea;
class ShellHeaderBar;
class ShellTabBar;

/** A window of the shell: tabs above, the current page below, dock panels at its side. Deletes itself when it
 * is closed. */
class ShellMainWindow final : public NHelioMainWindow
{
    Q_OBJECT
public:
    explicit ShellMainWindow(QWidget* parent = nullptr);
    ~ShellMainWindow() override;

    NHelioCentralArea* centralArea() const override;
    NHelioTabBar* tabBar() const override;
    NHelioHeaderBar* headerBar() const override;
    NHelioWorkAreaManager* workAreaManager() const override { return &m_workArea; }
    NHelioDockPanelUtility* getDockPanelUtility() const override { return &m_dockPanels; }
    /** True while a dialog or a menu is open. */
    bool isFocusLockedInCurrentPage() const override;
    void showToFront(bool restore, bool raise, bool flash) override;

    ShellCentralArea& area() const { return *m_area; }
    ShellTabBar& tabs() const { return *m_tabBar; }
    ShellHeaderBar& header() const { return *m_headerBar; }
    ShellWorkAreaManager& workArea() const { return m_workArea; }
    void setDark(bool dark);

Q_SIGNALS:
    void newPageRequested();

protected:
    /** Closes the pages first; stays open when one refuses, or until their documents were asked. */
    void closeEvent(QCloseEvent* event) override;

private:
    void addShortcuts();
    template <typename Slot>
    void addShortcut(const QKeySequence& keys, Slot slot);
    void onPageAdded(NHelioAppPage* page);
    void onPageRemoved(NHelioAppPage* page);
    void updateTitle();
    void closeCurrentTab();
    void refreshCurrentPage();
    void showNextPage();
    void showPreviousPage();

    ShellCentralArea* m_area;
    ShellTabBar* m_tabBar;
    ShellHeaderBar* m_headerBar;
    mutable ShellWorkAreaManager m_workArea;
    mutable ShellDockPanels m_dockPanels;
};
