#pragma once

#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/NHelioSubPage.h"
#include "nheliostat/framework/LeaveRequest.h"

#include <QPointer>

class ShellCentralArea;

/**
 * The tab of one page: its text and icon. Lives until the page leaves its window; one that is kept for a page
 * that stands elsewhere lives until the page comes back or goes.
 */
class ShellTab final : public NHelioTab
{
    Q_OBJECT
public:
    /** `area` is where the tab belongs; not owned. */
    ShellTab(NHelioAppPage* page, ShellCentralArea& area, QObject* parent = nullptr);

    /** The page; to be compared only, it may be dying. */
    const NHelioAppPage* key() const { return m_key; }
    NHelioAppPage* page() const { return m_page; }
    NHelioSubPage* subPage() const { return m_subPage; }

    /** The sub page's title, else the page's. */
    QString text() const;
    /** Null for none. */
    QIcon icon(qreal devicePixelRatio) const;
    bool isClosable() const;

    bool tryClose() override;
    /**
     * Ends what the page shows and shows it anew. Asks first, without waiting, when something would be lost.
     * A page that cannot be released loads its document again.
     */
    void restart();
    void setAllowReAttachSubwindow(bool allow) override;
    /**
     * Brings the page to the front as a tab of `window`, a main window, or with null of the window that this
     * tab belongs to, out of wherever it stands. Only when that was allowed, and once.
     */
    void reAttachSubPage(QWidget* window) override;

Q_SIGNALS:
    /** The text or the icon changed. */
    void changed();

private:
    void askToRestart();
    void restartNow();

    const NHelioAppPage* m_key;
    QPointer<NHelioAppPage> m_page;
    QPointer<ShellCentralArea> m_area;
    QPointer<NHelioSubPage> m_subPage;
    QPointer<NHelioTabDelegate> m_delegate;
    QPointer<LeaveRequest> m_leave; //!< a child; while it is asked whether the page may restart
    bool m_allowReAttach = false;
};
