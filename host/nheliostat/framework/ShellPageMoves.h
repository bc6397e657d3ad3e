#pragma once

#include "nheliostat/NHelioPage.h"

#include <QObject>
#include <QVector>

#include <functional>

class QMenu;
class ShellMainWindow;

/**
 * Pages that leave their window and may come back: into a window of their own, or aside, while a local
 * document stands where they stood. User-interface thread.
 */
class ShellPageMoves final : public QObject
{
    Q_OBJECT
public:
    /** `openWindow` makes the windows for single pages. */
    explicit ShellPageMoves(std::function<ShellMainWindow*()> openWindow, QObject* parent = nullptr);
    /** The pages that are kept aside go. */
    ~ShellPageMoves() override;

    /** Offers the moves in the menus of the window's tabs. */
    void watch(ShellMainWindow& window);
    /** Moves a page into a window of its own, which closes when no page is left in it. Null when it stands in
     * none or must not. */
    ShellMainWindow* detach(NHelioAppPage* page);
    /** Brings a detached page back to its place; false when it has none any more. */
    bool reAttach(NHelioAppPage* page);
    /**
     * Takes over a page without window whose place in `window` another page has taken. It is deleted when
     * that page or the window goes, unless it stands in a window again by then.
     */
    void keepAside(NHelioAppPage* page, ShellMainWindow& window, int index, NHelioAppPage* replacement);
    QVector<NHelioAppPage*> pagesAside() const;
    /** The window that a page that is kept aside belongs to; null for all other objects. */
    ShellMainWindow* windowOf(const QObject* page) const;

private:
    struct Aside
    {
        QPointer<NHelioAppPage> page;
        QPointer<ShellMainWindow> window;
    };

    void addActions(ShellMainWindow* window, NHelioAppPage* page, QMenu* menu);
    ShellMainWindow* homeOf(const NHelioAppPage* page) const;
    void dropIfAside(NHelioAppPage* page);

    std::function<ShellMainWindow*()> m_openWindow;
    QVector<QPointer<ShellMainWindow>> m_windows;
    QVector<Aside> m_asides;
};
