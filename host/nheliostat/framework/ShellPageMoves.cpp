#include "nheliostat/framework/ShellPageMoves.h"

#include "nheliostat/NHelioSubPage.h"
#include "nheliostat/framework/LeaveRequest.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellMainWindow.h"
#include "nheliostat/framework/ShellTabBar.h"

#include <QMenu>

#include <algorithm>
#include <utility>

namespace {

ShellMainWindow* windowAround(const QWidget* widget)
{
    return widget ? qobject_cast<ShellMainWindow*>(widget->window()) : nullptr;
}

} // namespace

ShellPageMoves::ShellPageMoves(std::function<ShellMainWindow*()> openWindow, QObject* parent)
    : QObject(parent)
    , m_openWindow(std::move(openWindow))
{
}

ShellPageMoves::~ShellPageMoves()
{
    const QVector<Aside> asides = m_asides;
    for (const Aside& aside : asides) {
        if (aside.page && !aside.page->parent())
            delete aside.page;
    }
}

void ShellPageMoves::watch(ShellMainWindow& window)
{
    m_windows.removeAll(nullptr);
    m_windows.append(&window);
    connect(&window.tabs(), &ShellTabBar::menuRequested, this,
            [this, shown = &window](NHelioAppPage* page, QMenu* menu) { addActions(shown, page, menu); });
}

void ShellPageMoves::addActions(ShellMainWindow* window, NHelioAppPage* page, QMenu* menu)
{
    if (!page)
        return;
    if (homeOf(page)) {
        QAction* back = menu->addAction(tr("Move back to its window"));
        back->setObjectName(QStringLiteral("reAttachTab"));
        connect(back, &QAction::triggered, page, [this, page] { reAttach(page); });
        return;
    }
    QAction* away = menu->addAction(tr("Move to a new window"));
    away->setObjectName(QStringLiteral("detachTab"));
    away->setEnabled(window->area().pages().size() > 1);
    connect(away, &QAction::triggered, page, [this, page] { detach(page); });
}

ShellMainWindow* ShellPageMoves::homeOf(const NHelioAppPage* page) const
{
    const auto home = std::find_if(m_windows.begin(), m_windows.end(), [page](const auto& window) {
        return window && window->tabs().keepsTabFor(page);
    });
    return home == m_windows.end() ? nullptr : home->data();
}

ShellMainWindow* ShellPageMoves::detach(NHelioAppPage* page)
{
    ShellMainWindow* home = windowAround(page);
    const int index = home ? home->area().pages().indexOf(page) : -1;
    const NHelioSubPage* subPage = page ? page->initialSubPage() : nullptr;
    if (index < 0 || !subPage || !subPage->supportsStandaloneWindow())
        return nullptr;
    ShellMainWindow* own = m_openWindow();
    own->resize(home->size());
    connect(
        &own->area(), &ShellCentralArea::pageRemoved, own,
        [own] {
            if (own->area().pages().isEmpty())
                own->close();
        },
        Qt::QueuedConnection);
    home->tabs().keepTabFor(page, index);
    own->area().addPage(page);
    own->showToFront(true, true, false);
    return own;
}

bool ShellPageMoves::reAttach(NHelioAppPage* page)
{
    ShellMainWindow* home = homeOf(page);
    NHelioTab* tab = home ? home->tabs().tabOf(page->initialSubPage()) : nullptr;
    if (!tab)
        return false;
    tab->setAllowReAttachSubwindow(true);
    tab->reAttachSubPage(nullptr);
    home->showToFront(true, true, false);
    return windowAround(page) == home;
}

void ShellPageMoves::keepAside(NHelioAppPage* page, ShellMainWindow& window, int index,
                               NHelioAppPage* replacement)
{
    m_asides.erase(std::remove_if(m_asides.begin(), m_asides.end(),
                                  [page](const Aside& each) { return !each.page || each.page == page; }),
                   m_asides.end());
    m_asides.append({page, &window});
    window.tabs().keepTabFor(page, index);
    const auto drop = [this, kept = QPointer<NHelioAppPage>(page)] { dropIfAside(kept); };
    // Later: whoever closes the replacement may bring the page back.
    connect(replacement, &QObject::destroyed, this, drop, Qt::QueuedConnection);
    connect(&window, &QObject::destroyed, this, drop, Qt::QueuedConnection);
}

QVector<NHelioAppPage*> ShellPageMoves::pagesAside() const
{
    QVector<NHelioAppPage*> pages;
    for (const Aside& aside : m_asides) {
        if (aside.page && !aside.page->parent())
            pages.append(aside.page);
    }
    return pages;
}

ShellMainWindow* ShellPageMoves::windowOf(const QObject* page) const
{
    const auto aside = std::find_if(m_asides.begin(), m_asides.end(),
                                    [page](const Aside& each) { return each.page.data() == page; });
    return page && aside != m_asides.end() && !page->parent() ? aside->window.data() : nullptr;
}

void ShellPageMoves::dropIfAside(NHelioAppPage* page)
{
    if (!page || page->parent())
        return;
    // Nobody can see it to decide: it saves what it can.
    const auto done = [](bool, const QVector<NHelioAppPage*>& pages) {
        for (NHelioAppPage* gone : pages) {
            if (gone->parent())
                continue;
            gone->close();
            gone->deleteLater();
        }
    };
    (new LeaveRequest({page}, LeaveRequest::Purpose::Close, LeaveRequest::Manner::Tell, done, this))->start();
}
