#pragma once

#include "nheliostat/NHelioMainWindow.h"

class QAction;
class QMenu;
class QTabBar;
class QToolButton;
class ShellCentralArea;
class ShellTab;
class ShellTabMenu;

/** The tabs of a central area's pages, in the order of the pages, and a button for a new page. */
class ShellTabBar final : public NHelioTabBar
{
    Q_OBJECT
public:
    /** Shows the pages of `area`, which is not owned and outlives the tab bar or is gone with all its pages.
     */
    explicit ShellTabBar(ShellCentralArea& area, QWidget* parent = nullptr);

    /** Also the tab that is kept for a page that stands elsewhere. */
    NHelioTab* tabOf(NHelioSubPage* subPage) const override;
    /** Keeps a tab, not shown, for a page that stands elsewhere and may come back to the place `index`. */
    void keepTabFor(NHelioAppPage* page, int index);
    bool keepsTabFor(const NHelioAppPage* page) const;
    /** Moves the tab of a page, and the page, to a place; the last one for an index behind it. */
    void moveTab(const NHelioAppPage* page, int index);
    /** Closes the current page's tab unless it refuses. */
    void closeCurrentTab();
    /** Closes all tabs but this one; tabs that refuse stay. */
    void closeOtherTabs(const ShellTab* tab);
    void setDark(bool dark);
    /** The menu of a tab, shown at `position` of the tab strip; null when there is no tab. Deleted when it
     * closes. */
    QMenu* popUpMenu(const QPoint& position);
    /** The same menu, not shown; the caller deletes it. Null when the sub page has no tab in sight. */
    QMenu* makeMenu(NHelioSubPage* subPage);

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    void newPageRequested();
    /** The menu of the page's tab wants the actions that move the page between windows. */
    void menuRequested(NHelioAppPage* page, QMenu* menu);

private:
    struct KeptTab
    {
        ShellTab* tab; //!< a child
        int index;
    };

    int takeKeptTab(const NHelioAppPage* page);
    void onPageAdded(NHelioAppPage* page);
    void onPageRemoved(NHelioAppPage* page);
    void onCurrentPageChanged(NHelioAppPage* page);
    void onTabSelected(int index);
    void onTabMoved(int from, int to);
    void onCloseRequested(int index);
    int indexOf(const NHelioAppPage* page) const;
    void draw(const ShellTab* tab);
    ShellTabMenu* makeMenuOf(ShellTab& tab);

    ShellCentralArea& m_area;
    QTabBar* m_strip;
    QToolButton* m_newPage;
    QVector<ShellTab*> m_tabs; //!< children, in the order of the strip
    QVector<KeptTab> m_keptTabs;
};
