#pragma once

#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/framework/LeaveRequest.h"

#include <QHash>
#include <QSet>

class QStackedWidget;
class ShellEmptyState;

/**
 * The pages of a window, one of them shown; the empty state when there is none.
 *
 * A page leaves by `removePage`, by closing itself (it is then deleted at a later turn of the event loop;
 * until then it still stands in its window) or by being deleted. A page whose document can be asked does not
 * close at once: its `close` answers false, and it closes when the document, or the user, has agreed.
 */
class ShellCentralArea final : public NHelioCentralArea
{
    Q_OBJECT
public:
    explicit ShellCentralArea(QWidget* parent = nullptr);
    ~ShellCentralArea() override;

    QVector<NHelioAppPage*> pages() const override { return m_pages; }
    NHelioAppPage* pageAt(int index) const override { return m_pages.value(index, nullptr); }
    NHelioAppPage* currentPage() const override { return m_current; }

    NHelioAppPage* addPage(int type, const QString& text, const QVariantMap& params) override;
    void addPage(NHelioAppPage* page) override;
    /**
     * A page for a recover item, which is not loaded until it is made current for the first time, here or in
     * another window. Not made current by this. Null when no page can be created.
     */
    NHelioAppPage* addWaitingPage(const NHelioWorkAreaRecoverItem& item);
    /** Shows a widget above the pages, until it is deleted. Takes it in as a child. */
    void showNotice(QWidget* notice);
    NHelioAppPage* addBrowserPage(const QString& url) override;
    void removePage(NHelioAppPage* page) override;
    /** Does nothing for a page of another window. */
    void setCurrentPage(NHelioAppPage* page) override;

    /** A page that was taken out, and where it stood. */
    struct Vacancy
    {
        QPointer<NHelioAppPage> page;
        int index = -1; //!< -1 for none
    };
    /** What removePage took out last, unless the page stands somewhere again; asked for once. */
    Vacancy takeVacancy();

    /** Changes the order; indexes outside the range change nothing. */
    void movePage(int from, int to);
    /** Makes the page that stands `step` places behind the current one current, round and round. */
    void stepCurrentPage(int step);
    /**
     * Closes pages. Those whose documents can be asked go together, once all of them, or the user, agreed;
     * the others at once. False when one stays for now.
     */
    bool closePages(const QVector<NHelioAppPage*>& pages);
    /**
     * Closes all pages, the current one last. False when a page refuses, with the rest left open, or when
     * there are documents to be asked; `then` is called when all of these have agreed later.
     */
    bool closeAllPages(std::function<void()> then = {});
    /** Tells, once, what became of a page that is being asked: whether it closes. At once for another one. */
    void whenDecided(const NHelioAppPage* page, std::function<void(bool closes)> listener);
    /** Takes back the questions that are open: all pages stay. */
    void cancelLeaving();
    /** The documents of these pages have agreed, or been closed: the pages close without being asked again.
     */
    void closeWithoutAsking(const QVector<NHelioAppPage*>& pages);
    /** Releases the pages that are not current and say that they can be released. */
    void releaseInactivePages();

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    void pageAdded(NHelioAppPage* page);
    /** The page is out; it may be in the middle of its destruction: only compare it. */
    void pageRemoved(NHelioAppPage* page);
    /** A page was released, by whomever. */
    void pageReleased(NHelioAppPage* page);
    /** The order of the pages changed. */
    void pageMoved(int from, int to);
    /** Null when no page is left. */
    void currentPageChanged(NHelioAppPage* page);
    void newPageRequested();

private:
    QVector<NHelioAppPage*> pagesCurrentLast() const;
    void takeIn(NHelioAppPage* page, bool mayBecomeCurrent = true);
    void loadIfNeeded(NHelioAppPage* page);
    void stopWatching(NHelioAppPage* page);
    /** Takes the page off the list and makes a neighbour current; does not touch the page itself. */
    void forget(NHelioAppPage* page);
    void onPageDestroyed(QObject* page);
    void watchSubPage(NHelioAppPage* page);
    bool askToClose(QObject* page, QEvent* closeEvent);
    bool mustBeAsked(const NHelioAppPage* page) const;
    void askDocuments(const QVector<NHelioAppPage*>& pages, std::function<void(bool all)> then);
    void decide(const NHelioAppPage* page, bool closes);

    QStackedWidget* m_stack;
    ShellEmptyState* m_emptyState;
    QVector<NHelioAppPage*> m_pages;
    NHelioAppPage* m_current = nullptr;
    Vacancy m_vacancy;
    QSet<const NHelioAppPage*> m_releasedSinceShown;
    QSet<const QObject*> m_beingAskedToClose;
    QSet<const NHelioAppPage*> m_mayClose; //!< their documents were asked
    QHash<const NHelioAppPage*, QPointer<LeaveRequest>> m_leaving;
    QMultiHash<const NHelioAppPage*, std::function<void(bool)>> m_deciding;
};
