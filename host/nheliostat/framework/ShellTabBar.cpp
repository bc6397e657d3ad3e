#include "nheliostat/framework/ShellTabBar.h"

#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellLook.h"
#include "nheliostat/framework/ShellTab.h"
#include "nheliostat/framework/ShellTabMenu.h"

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <QTabBar>
#include <QToolButton>

#include <algorithm>
#include <utility>

namespace {

/** A text as it is: no mnemonics, one line. */
QString tabText(const QString& title)
{
    return title.simplified().replace(u'&', QLatin1String("&&"));
}

} // namespace

ShellTabBar::ShellTabBar(ShellCentralArea& area, QWidget* parent)
    : NHelioTabBar(parent)
    , m_area(area)
    , m_strip(new QTabBar(this))
    , m_newPage(new QToolButton(this))
{
    setObjectName(QStringLiteral("tabBar"));
    m_strip->setObjectName(QStringLiteral("tabs"));
    m_strip->setMovable(true);
    m_strip->setTabsClosable(true);
    m_strip->setDocumentMode(true);
    m_strip->setExpanding(false);
    m_strip->setElideMode(Qt::ElideRight);
    m_strip->setContextMenuPolicy(Qt::CustomContextMenu);
    m_strip->installEventFilter(this);
    m_newPage->setObjectName(QStringLiteral("newPageButton"));
    m_newPage->setToolTip(tr("New page"));

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(m_strip);
    row->addWidget(m_newPage);
    row->addStretch();

    connect(m_strip, &QTabBar::currentChanged, this, &ShellTabBar::onTabSelected);
    connect(m_strip, &QTabBar::tabMoved, this, &ShellTabBar::onTabMoved);
    connect(m_strip, &QTabBar::tabCloseRequested, this, &ShellTabBar::onCloseRequested);
    connect(m_strip, &QTabBar::customContextMenuRequested, this, &ShellTabBar::popUpMenu);
    connect(m_newPage, &QToolButton::clicked, this, &ShellTabBar::newPageRequested);
    connect(&area, &ShellCentralArea::pageAdded, this, &ShellTabBar::onPageAdded);
    connect(&area, &ShellCentralArea::pageRemoved, this, &ShellTabBar::onPageRemoved);
    connect(&area, &ShellCentralArea::currentPageChanged, this, &ShellTabBar::onCurrentPageChanged);
}

NHelioTab* ShellTabBar::tabOf(NHelioSubPage* subPage) const
{
    const auto found = std::find_if(m_tabs.begin(), m_tabs.end(),
                                    [subPage](const ShellTab* tab) { return tab->subPage() == subPage; });
    if (subPage && found != m_tabs.end())
        return *found;
    const auto kept = std::find_if(m_keptTabs.begin(), m_keptTabs.end(),
                                   [subPage](const KeptTab& each) { return each.tab->subPage() == subPage; });
    return subPage && kept != m_keptTabs.end() ? kept->tab : nullptr;
}

void ShellTabBar::keepTabFor(NHelioAppPage* page, int index)
{
    takeKeptTab(page);
    auto* tab = new ShellTab(page, m_area, this);
    connect(page, &QObject::destroyed, tab, [this, key = tab->key()] { takeKeptTab(key); });
    m_keptTabs.append({tab, index});
}

bool ShellTabBar::keepsTabFor(const NHelioAppPage* page) const
{
    return std::any_of(m_keptTabs.begin(), m_keptTabs.end(),
                       [page](const KeptTab& each) { return each.tab->key() == page; });
}

int ShellTabBar::takeKeptTab(const NHelioAppPage* page)
{
    const auto kept = std::find_if(m_keptTabs.begin(), m_keptTabs.end(),
                                   [page](const KeptTab& each) { return each.tab->key() == page; });
    if (kept == m_keptTabs.end())
        return -1;
    const int index = kept->index;
    // Later: the tab may be the one that brings the page back.
    kept->tab->deleteLater();
    m_keptTabs.erase(kept);
    return index;
}

void ShellTabBar::moveTab(const NHelioAppPage* page, int index)
{
    const int from = indexOf(page);
    if (from >= 0 && index >= 0)
        m_strip->moveTab(from, std::min(index, m_tabs.size() - 1));
}

void ShellTabBar::closeCurrentTab()
{
    onCloseRequested(m_strip->currentIndex());
}

void ShellTabBar::closeOtherTabs(const ShellTab* tab)
{
    QVector<NHelioAppPage*> pages;
    for (const ShellTab* other : std::as_const(m_tabs)) {
        if (other != tab && other->page() && other->isClosable())
            pages.append(other->page());
    }
    m_area.closePages(pages);
}

void ShellTabBar::setDark(bool dark)
{
    m_newPage->setIcon(ShellLook::icon(QStringLiteral("add"), dark));
}

void ShellTabBar::onPageAdded(NHelioAppPage* page)
{
    const int keptIndex = takeKeptTab(page);
    auto* tab = new ShellTab(page, m_area, this);
    QSignalBlocker quiet(m_strip);
    m_tabs.append(tab);
    const int index = m_strip->addTab(QString());
    if (!tab->isClosable())
        m_strip->setTabButton(index, QTabBar::RightSide, nullptr);
    connect(tab, &ShellTab::changed, this, [this, tab] { draw(tab); });
    draw(tab);
    quiet.unblock();
    moveTab(page, keptIndex);
}

void ShellTabBar::onPageRemoved(NHelioAppPage* page)
{
    const int index = indexOf(page);
    if (index < 0)
        return;
    const QSignalBlocker quiet(m_strip);
    // Later: the tab may be the one that was asked to close.
    m_tabs.takeAt(index)->deleteLater();
    m_strip->removeTab(index);
}

void ShellTabBar::onCurrentPageChanged(NHelioAppPage* page)
{
    const QSignalBlocker quiet(m_strip);
    m_strip->setCurrentIndex(indexOf(page));
}

void ShellTabBar::onTabSelected(int index)
{
    if (ShellTab* tab = m_tabs.value(index, nullptr))
        m_area.setCurrentPage(tab->page());
}

void ShellTabBar::onTabMoved(int from, int to)
{
    m_tabs.move(from, to);
    m_area.movePage(from, to);
}

void ShellTabBar::onCloseRequested(int index)
{
    if (ShellTab* tab = m_tabs.value(index, nullptr))
        tab->tryClose();
}

int ShellTabBar::indexOf(const NHelioAppPage* page) const
{
    const auto found = std::find_if(m_tabs.begin(), m_tabs.end(),
                                    [page](const ShellTab* tab) { return tab->key() == page; });
    return found == m_tabs.end() ? -1 : static_cast<int>(found - m_tabs.begin());
}

void ShellTabBar::draw(const ShellTab* tab)
{
    const int index = indexOf(tab->key());
    if (index < 0)
        return;
    const QString text = tab->text();
    m_strip->setTabText(index, tabText(text));
    m_strip->setTabToolTip(index, text.toHtmlEscaped());
    m_strip->setTabIcon(index, tab->icon(devicePixelRatioF()));
}

QMenu* ShellTabBar::popUpMenu(const QPoint& position)
{
    ShellTab* tab = m_tabs.value(m_strip->tabAt(position), nullptr);
    if (!tab)
        return nullptr;
    ShellTabMenu* menu = makeMenuOf(*tab);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(m_strip->mapToGlobal(position));
    return menu;
}

QMenu* ShellTabBar::makeMenu(NHelioSubPage* subPage)
{
    const auto found = std::find_if(m_tabs.begin(), m_tabs.end(),
                                    [subPage](const ShellTab* tab) { return tab->subPage() == subPage; });
    return subPage && found != m_tabs.end() ? makeMenuOf(**found) : nullptr;
}

ShellTabMenu* ShellTabBar::makeMenuOf(ShellTab& tab)
{
    auto* menu = new ShellTabMenu(tab, m_tabs.size() > 1, this);
    const QPointer<ShellTab> shown = &tab;
    connect(menu, &ShellTabMenu::windowActionsAsked, this,
            [this, shown, menu] { Q_EMIT menuRequested(shown->page(), menu); });
    connect(menu, &ShellTabMenu::closeOthersChosen, this, [this, shown] {
        if (shown)
            closeOtherTabs(shown);
    });
    if (NHelioSubPage* subPage = tab.subPage())
        subPage->doAttachContextMenuActions(menu);
    menu->complete();
    return menu;
}

bool ShellTabBar::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_strip && event->type() == QEvent::MouseButtonRelease) {
        const auto* mouse = static_cast<const QMouseEvent*>(event);
        if (mouse->button() == Qt::MiddleButton) {
            onCloseRequested(m_strip->tabAt(mouse->pos()));
            return true;
        }
    }
    return NHelioTabBar::eventFilter(watched, event);
}
