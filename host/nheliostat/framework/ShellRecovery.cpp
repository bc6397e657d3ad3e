#include "nheliostat/framework/ShellRecovery.h"

#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/NHelioSubPage.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellMainWindow.h"
#include "zeolite/NxLoggerLite.h"
#include "zeolite/NxWebViewContainer.h"

#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::milliseconds writeDelay(300);

NHelioBrowserWidgetBase* browserOf(const NHelioAppPage* page)
{
    return page->findChild<NHelioBrowserWidgetBase*>();
}

} // namespace

ShellRecovery::ShellRecovery(const QString& directory, std::function<ShellMainWindow*()> openWindow,
                             QObject* parent)
    : QObject(parent)
    , m_openWindow(std::move(openWindow))
    , m_store(directory)
    , m_writeSoon(this)
{
    m_writeSoon.setSingleShot(true);
    m_writeSoon.setInterval(writeDelay);
    connect(&m_writeSoon, &QTimer::timeout, this, &ShellRecovery::write);
}

void ShellRecovery::watch(ShellMainWindow& window)
{
    m_windows.removeAll(nullptr);
    m_windows.append(&window);
    window.workArea().setListener([this] { schedule(); });
    ShellCentralArea& area = window.area();
    connect(&area, &ShellCentralArea::pageAdded, this, &ShellRecovery::watchPage);
    connect(&area, &ShellCentralArea::pageRemoved, this, &ShellRecovery::schedule);
    connect(&area, &ShellCentralArea::pageMoved, this, &ShellRecovery::schedule);
    connect(&area, &ShellCentralArea::currentPageChanged, this, &ShellRecovery::schedule);
}

void ShellRecovery::watchPage(NHelioAppPage* page)
{
    schedule();
    const NHelioSubPage* subPage = page->initialSubPage();
    if (!subPage || !subPage->supportsWorkArea())
        return;
    const auto changed = [this, page] { update(page); };
    // A page that comes back into a window is watched already.
    disconnect(subPage, nullptr, this, nullptr);
    connect(subPage, &NHelioSubPage::windowTitleChanged, this, changed);
    connect(subPage, &NHelioSubPage::iconChanged, this, changed);
    auto* browserPage = qobject_cast<NHelioBrowserPageRoot*>(page);
    if (!browserPage)
        return;
    if (browserOf(page))
        return watchBrowser(page);
    disconnect(browserPage->browserCreator(), nullptr, this, nullptr);
    connect(browserPage->browserCreator(), &NHelioBrowserCreator::createSucceeded, this,
            [this, page] { watchBrowser(page); });
}

void ShellRecovery::watchBrowser(NHelioAppPage* page)
{
    const NHelioBrowserWidgetBase* browser = browserOf(page);
    if (!browser)
        return;
    const auto changed = [this, page] { update(page); };
    disconnect(browser, nullptr, this, nullptr);
    connect(browser, &NHelioBrowserWidgetBase::loadFinished, this, changed);
    // A page may change what its address says without a load.
    const auto followAddress = [this, changed](NxWebViewContainer* view) {
        connect(view, &NxWebViewContainer::addressChange, this, changed, Qt::QueuedConnection);
    };
    connect(browser, &NHelioBrowserWidgetBase::webviewCreated, this, followAddress);
    if (NxWebViewContainer* view = browser->webViewContainer())
        followAddress(view);
    // The page takes in what it is told before it is asked.
    connect(browser, &NHelioBrowserWidgetBase::webFileReady, this, changed, Qt::QueuedConnection);
}

void ShellRecovery::update(NHelioAppPage* page)
{
    for (const QPointer<ShellMainWindow>& window : std::as_const(m_windows)) {
        if (window && window->area().pages().contains(page) && page->initialSubPage())
            window->workArea().updateItem(page->initialSubPage()->workAreaItemId());
    }
}

void ShellRecovery::schedule()
{
    if (!m_ended && !m_writeSoon.isActive())
        m_writeSoon.start();
}

void ShellRecovery::write()
{
    if (!m_ended)
        m_store.write(shown());
}

WorkAreaRecord ShellRecovery::shown() const
{
    WorkAreaRecord record;
    for (const QPointer<ShellMainWindow>& window : m_windows) {
        if (!window)
            continue;
        WorkAreaRecord::Window kept;
        const QVector<NHelioAppPage*> pages = window->area().pages();
        for (const NHelioAppPage* page : pages) {
            const auto item = window->workArea().itemOf(page);
            if (!item)
                continue;
            if (page == window->area().currentPage())
                kept.current = kept.items.size();
            kept.items.append(*item);
        }
        if (!kept.items.isEmpty())
            record.windows.append(kept);
    }
    return record;
}

int ShellRecovery::offered()
{
    return m_store.abandoned().count();
}

void ShellRecovery::restore(ShellMainWindow& window)
{
    const WorkAreaRecord record = m_store.abandoned();
    for (int i = 0; i < record.windows.size(); ++i) {
        ShellMainWindow* shownIn = i == 0 ? &window : m_openWindow();
        if (i > 0)
            shownIn->resize(window.size());
        restoreWindow(record.windows.at(i), *shownIn);
        if (shownIn == &window)
            continue;
        if (shownIn->area().pages().isEmpty())
            shownIn->close();
        else
            shownIn->showToFront(true, false, false);
    }
    // What the earlier shell left goes only when this one's own record holds it.
    write();
    m_store.waitUntilWritten();
    m_store.forgetAbandoned();
    window.showToFront(true, true, false);
}

void ShellRecovery::restoreWindow(const WorkAreaRecord::Window& record, ShellMainWindow& window)
{
    NHelioAppPage* first = nullptr;
    NHelioAppPage* current = nullptr;
    for (int i = 0; i < record.items.size(); ++i) {
        NHelioAppPage* page = restoreItem(record.items.at(i), window);
        if (!first)
            first = page;
        if (i == record.current)
            current = page;
    }
    if (NHelioAppPage* shown = current ? current : first)
        window.area().setCurrentPage(shown);
}

NHelioAppPage* ShellRecovery::restoreItem(const NHelioWorkAreaRecoverItem& item, ShellMainWindow& window)
{
    const QPointer<NHelioAppPage> page = window.area().addWaitingPage(item);
    if (page && page->recoverFiles({item}, 0, page->initialSubPage()))
        return page;
    NxLoggerLite::writeWarning(
        QStringLiteral("nheliostat"),
        QStringLiteral("not recovered: page type %1, \"%2\"").arg(item.pageType).arg(item.title));
    if (page)
        page->close();
    return nullptr;
}

void ShellRecovery::dismiss()
{
    m_store.forgetAbandoned();
}

void ShellRecovery::end()
{
    m_ended = true;
    m_writeSoon.stop();
    m_store.clear();
}
