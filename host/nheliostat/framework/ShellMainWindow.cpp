#include "nheliostat/framework/ShellMainWindow.h"

#include "nheliostat/NHelioSubPage.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellHeaderBar.h"
#include "nheliostat/framework/ShellLook.h"
#include "nheliostat/framework/ShellTabBar.h"

#include <QApplication>
#include <QCloseEvent>
#include <QShortcut>

ShellMainWindow::ShellMainWindow(QWidget* parent)
    : NHelioMainWindow(parent)
    , m_area(new ShellCentralArea)
    , m_tabBar(new ShellTabBar(*m_area))
    , m_headerBar(new ShellHeaderBar(m_tabBar))
    , m_dockPanels(*this)
{
    setObjectName(QStringLiteral("mainWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    m_headerBar->addTool(m_dockPanels.toggleAction());
    setMenuWidget(m_headerBar);
    setCentralWidget(m_area);

    connect(m_area, &ShellCentralArea::pageAdded, this, &ShellMainWindow::onPageAdded);
    connect(m_area, &ShellCentralArea::pageRemoved, this, &ShellMainWindow::onPageRemoved);
    connect(m_area, &ShellCentralArea::currentPageChanged, this, &ShellMainWindow::updateTitle);
    connect(m_area, &ShellCentralArea::newPageRequested, this, &ShellMainWindow::newPageRequested);
    connect(m_tabBar, &ShellTabBar::newPageRequested, this, &ShellMainWindow::newPageRequested);
    addShortcuts();
    updateTitle();
}

ShellMainWindow::~ShellMainWindow()
{
    // The pages look for their window until their end, and tell it of it.
    delete m_area;
}

NHelioCentralArea* ShellMainWindow::centralArea() const
{
    return m_area;
}

NHelioTabBar* ShellMainWindow::tabBar() const
{
    return m_tabBar;
}

NHelioHeaderBar* ShellMainWindow::headerBar() const
{
    return m_headerBar;
}

bool ShellMainWindow::isFocusLockedInCurrentPage() const
{
    return QApplication::activeModalWidget() || QApplication::activePopupWidget();
}

void ShellMainWindow::showToFront(bool restore, bool raiseIt, bool flash)
{
    if (restore && isMinimized())
        setWindowState(windowState() & ~Qt::WindowMinimized);
    if (restore)
        show();
    if (raiseIt) {
        raise();
        activateWindow();
    }
    if (flash)
        QApplication::alert(this);
}

void ShellMainWindow::setDark(bool dark)
{
    setStyleSheet(ShellLook::styleSheet(dark));
    m_tabBar->setDark(dark);
    m_dockPanels.setDark(dark);
}

void ShellMainWindow::closeEvent(QCloseEvent* event)
{
    event->setAccepted(m_area->closeAllPages([this] { close(); }));
}

template <typename Slot>
void ShellMainWindow::addShortcut(const QKeySequence& keys, Slot slot)
{
    connect(new QShortcut(keys, this), &QShortcut::activated, this, slot);
}

void ShellMainWindow::addShortcuts()
{
    addShortcut(QKeySequence(Qt::CTRL | Qt::Key_T), &ShellMainWindow::newPageRequested);
    addShortcut(QKeySequence(Qt::CTRL | Qt::Key_W), &ShellMainWindow::closeCurrentTab);
    addShortcut(QKeySequence(Qt::CTRL | Qt::Key_R), &ShellMainWindow::refreshCurrentPage);
    addShortcut(QKeySequence(Qt::CTRL | Qt::Key_Tab), &ShellMainWindow::showNextPage);
    addShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab), &ShellMainWindow::showPreviousPage);
}

void ShellMainWindow::onPageAdded(NHelioAppPage* page)
{
    m_workArea.addPage(page);
    if (const NHelioSubPage* subPage = page->initialSubPage()) {
        connect(subPage, &NHelioSubPage::windowTitleChanged, this, &ShellMainWindow::updateTitle);
        connect(subPage, &NHelioSubPage::iconChanged, this, &ShellMainWindow::updateTitle);
    }
}

void ShellMainWindow::onPageRemoved(NHelioAppPage* page)
{
    m_workArea.removePage(page);
}

void ShellMainWindow::updateTitle()
{
    const QString application = QGuiApplication::applicationDisplayName();
    const NHelioAppPage* page = m_area->currentPage();
    const QString title = page ? page->pageTitle() : QString();
    setWindowTitle(title.isEmpty() ? application : QStringLiteral("%1 — %2").arg(title, application));
}

void ShellMainWindow::closeCurrentTab()
{
    m_tabBar->closeCurrentTab();
}

void ShellMainWindow::refreshCurrentPage()
{
    NHelioAppPage* page = m_area->currentPage();
    if (page && page->metaObject()->indexOfMethod("refreshPage()") >= 0)
        QMetaObject::invokeMethod(page, "refreshPage");
}

void ShellMainWindow::showNextPage()
{
    m_area->stepCurrentPage(1);
}

void ShellMainWindow::showPreviousPage()
{
    m_area->stepCurrentPage(-1);
}
