#include "nheliostat/framework/ShellCentralArea.h"

#include "nheliostat/NHelioPluginWidgetFactory.h"
#include "nheliostat/NHelioSubPage.h"
#include "nheliostat/framework/ShellBrowserPage.h"
#include "nheliostat/framework/ShellEmptyState.h"
#include "nheliostat/framework/ShellWorkAreaManager.h"
#include "zeolite/NxLoggerLite.h"

#include <QCoreApplication>
#include <QEvent>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>
#include <utility>

namespace {

void logNoPage(int type, const QString& why)
{
    NxLoggerLite::writeError(QStringLiteral("nheliostat"),
                             QStringLiteral("no page of type %1: %2").arg(type).arg(why));
}

std::unique_ptr<NHelioAppPage> createPage(int type, QWidget* parent)
{
    NHelioPluginWidgetFactoryItemBase* item = NHelioPluginWidgetFactory::findItem(type);
    if (!item) {
        logNoPage(type, QStringLiteral("the type is not registered"));
        return nullptr;
    }
    std::unique_ptr<QWidget> widget(item->createWidget(parent));
    auto* page = qobject_cast<NHelioAppPage*>(widget.get());
    if (!page) {
        logNoPage(type,
                  widget ? QStringLiteral("its widget is no page") : QStringLiteral("its factory made none"));
        return nullptr;
    }
    widget.release();
    return std::unique_ptr<NHelioAppPage>(page);
}

} // namespace

ShellCentralArea::ShellCentralArea(QWidget* parent)
    : NHelioCentralArea(parent)
    , m_stack(new QStackedWidget(this))
    , m_emptyState(new ShellEmptyState)
{
    setObjectName(QStringLiteral("centralArea"));
    m_stack->setObjectName(QStringLiteral("pageStack"));
    m_stack->addWidget(m_emptyState);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_stack);
    connect(m_emptyState, &ShellEmptyState::newPageRequested, this, &ShellCentralArea::newPageRequested);
}

ShellCentralArea::~ShellCentralArea()
{
    // The pages go while the window still stands around them.
    for (NHelioAppPage* page : pagesCurrentLast()) {
        stopWatching(page);
        forget(page);
        delete page;
    }
}

NHelioAppPage* ShellCentralArea::addPage(int type, const QString& text, const QVariantMap& params)
{
    const QPointer<NHelioAppPage> page = createPage(type, m_stack).release();
    if (!page)
        return nullptr;
    takeIn(page);
    if (page && !text.isEmpty())
        page->notify(text);
    if (page && !params.isEmpty())
        page->handleNotifyParams(params);
    return page;
}

void ShellCentralArea::addPage(NHelioAppPage* page)
{
    if (!page || m_pages.contains(page))
        return;
    for (QWidget* holder = page->parentWidget(); holder; holder = holder->parentWidget()) {
        if (auto* area = qobject_cast<ShellCentralArea*>(holder))
            area->removePage(page);
    }
    takeIn(page);
}

NHelioAppPage* ShellCentralArea::addWaitingPage(const NHelioWorkAreaRecoverItem& item)
{
    const QPointer<NHelioAppPage> page = createPage(item.pageType, m_stack).release();
    if (!page)
        return nullptr;
    page->setProperty(ShellWorkAreaManager::waitingItemProperty, QVariant::fromValue(item));
    // Others look at these before the page itself takes its item.
    if (!item.suffix.isEmpty())
        page->setProperty("suffix", item.suffix);
    const QString fileId = item.params.value(QStringLiteral("fileId")).toString();
    if (!fileId.isEmpty())
        page->setProperty("File_ID", fileId);
    takeIn(page, false);
    if (page && page->initialSubPage())
        page->initialSubPage()->setWindowTitle(item.title);
    return page;
}

void ShellCentralArea::showNotice(QWidget* notice)
{
    static_cast<QVBoxLayout*>(layout())->insertWidget(0, notice);
    notice->show();
}

NHelioAppPage* ShellCentralArea::addBrowserPage(const QString& url)
{
    const QPointer<NHelioAppPage> page = addPage(ShellBrowserPage::type, url, {});
    if (page)
        page->newDocument({}, {}, NHelioProxyStrategy::Direct, nullptr, {});
    return page;
}

void ShellCentralArea::takeIn(NHelioAppPage* page, bool mayBecomeCurrent)
{
    const QPointer<NHelioAppPage> taken = page;
    m_stack->addWidget(page);
    if (!page->initialSubPage())
        page->setInitialSubPage(page->createSubPage(page->subPages()));
    watchSubPage(page);
    connect(page, &QObject::destroyed, this, &ShellCentralArea::onPageDestroyed);
    page->installEventFilter(this);
    m_pages.append(page);
    Q_EMIT pageAdded(page);
    if (taken && !m_current && mayBecomeCurrent)
        setCurrentPage(page);
}

void ShellCentralArea::watchSubPage(NHelioAppPage* page)
{
    const NHelioSubPage* subPage = page->initialSubPage();
    if (!subPage)
        return;
    connect(subPage, &NHelioSubPage::activationRequested, this, [this, page] { setCurrentPage(page); });
    connect(subPage, &NHelioSubPage::iconChanged, this, [this, page] {
        if (page->isReleased())
            Q_EMIT pageReleased(page);
    });
}

void ShellCentralArea::stopWatching(NHelioAppPage* page)
{
    page->removeEventFilter(this);
    page->disconnect(this);
    if (NHelioSubPage* subPage = page->initialSubPage())
        subPage->disconnect(this);
}

void ShellCentralArea::removePage(NHelioAppPage* page)
{
    if (!m_pages.contains(page))
        return;
    m_vacancy = {page, m_pages.indexOf(page)};
    stopWatching(page);
    m_stack->removeWidget(page);
    page->setParent(nullptr);
    forget(page);
}

ShellCentralArea::Vacancy ShellCentralArea::takeVacancy()
{
    const Vacancy vacancy = std::exchange(m_vacancy, {});
    return vacancy.page && !vacancy.page->parent() ? vacancy : Vacancy();
}

void ShellCentralArea::forget(NHelioAppPage* page)
{
    const int index = m_pages.indexOf(page);
    m_pages.removeAt(index);
    m_releasedSinceShown.remove(page);
    m_mayClose.remove(page);
    m_leaving.remove(page);
    const bool wasCurrent = page == m_current;
    if (wasCurrent)
        m_current = nullptr;
    Q_EMIT pageRemoved(page);
    decide(page, true);
    if (!wasCurrent || m_current)
        return;
    if (!m_pages.isEmpty())
        return setCurrentPage(m_pages.at(std::min(index, m_pages.size() - 1)));
    m_stack->setCurrentWidget(m_emptyState);
    Q_EMIT currentPageChanged(nullptr);
}

void ShellCentralArea::onPageDestroyed(QObject* page)
{
    // What is left of the page is no NHelioAppPage any more: found by its address.
    const auto gone = std::find_if(m_pages.cbegin(), m_pages.cend(),
                                   [page](const QObject* known) { return known == page; });
    if (gone != m_pages.cend())
        forget(*gone);
}

void ShellCentralArea::setCurrentPage(NHelioAppPage* page)
{
    if (!m_pages.contains(page))
        return;
    const QPointer<NHelioAppPage> entered = page;
    const QPointer<NHelioAppPage> left = m_current;
    if (left != entered) {
        m_current = page;
        m_stack->setCurrentWidget(page);
        m_releasedSinceShown.remove(page);
        if (left)
            left->updateLastActiveTime();
        page->updateLastActiveTime();
    }
    loadIfNeeded(page);
    if (left == entered || !entered)
        return;
    Q_EMIT currentPageChanged(page);
    if (entered && m_current == entered)
        page->notifyFocusIn();
    NHelioSubPage* subPage = entered && m_current == entered ? page->initialSubPage() : nullptr;
    if (subPage)
        Q_EMIT subPage->subPageActived();
}

void ShellCentralArea::loadIfNeeded(NHelioAppPage* page)
{
    const bool isWaiting = page->property(ShellWorkAreaManager::waitingItemProperty).isValid();
    if (!isWaiting && !page->isReleased())
        return;
    page->setProperty(ShellWorkAreaManager::waitingItemProperty, QVariant());
    page->load();
}

void ShellCentralArea::movePage(int from, int to)
{
    if (from < 0 || from >= m_pages.size() || to < 0 || to >= m_pages.size())
        return;
    m_pages.move(from, to);
    Q_EMIT pageMoved(from, to);
}

void ShellCentralArea::stepCurrentPage(int step)
{
    if (m_pages.isEmpty())
        return;
    const int count = m_pages.size();
    const int index = (m_pages.indexOf(m_current) + step) % count;
    setCurrentPage(m_pages.at((index + count) % count));
}

QVector<NHelioAppPage*> ShellCentralArea::pagesCurrentLast() const
{
    QVector<NHelioAppPage*> pages = m_pages;
    if (m_current)
        pages.move(pages.indexOf(m_current), pages.size() - 1);
    return pages;
}

bool ShellCentralArea::mustBeAsked(const NHelioAppPage* page) const
{
    return !m_mayClose.contains(page) && documentGuardOf(page);
}

bool ShellCentralArea::closePages(const QVector<NHelioAppPage*>& pages)
{
    QVector<NHelioAppPage*> asked;
    bool areAllClosed = true;
    for (NHelioAppPage* page : pages) {
        if (!m_pages.contains(page))
            continue;
        if (mustBeAsked(page))
            asked.append(page);
        else
            areAllClosed = page->close() && areAllClosed;
    }
    if (!asked.isEmpty())
        askDocuments(asked, {});
    return areAllClosed && asked.isEmpty();
}

bool ShellCentralArea::closeAllPages(std::function<void()> then)
{
    const QVector<NHelioAppPage*> pages = pagesCurrentLast();
    if (std::any_of(pages.begin(), pages.end(), [this](const auto* page) { return mustBeAsked(page); })) {
        askDocuments(m_pages, [then](bool all) {
            if (all && then)
                then();
        });
        return false;
    }
    return std::all_of(pages.begin(), pages.end(),
                       [this](NHelioAppPage* page) { return !m_pages.contains(page) || page->close(); });
}

void ShellCentralArea::askDocuments(const QVector<NHelioAppPage*>& pages, std::function<void(bool)> then)
{
    for (const NHelioAppPage* page : pages) {
        if (!m_leaving.contains(page))
            continue;
        // One question at a time; the wider wish takes the place of the narrower one.
        if (pages.size() == 1) {
            if (then)
                m_deciding.insert(page, then);
            return;
        }
        if (LeaveRequest* earlier = m_leaving.value(page))
            earlier->cancel();
    }
    const auto done = [this, pages, then](bool all, const QVector<NHelioAppPage*>& free) {
        for (const NHelioAppPage* page : pages)
            m_leaving.remove(page);
        closeWithoutAsking(free);
        for (const NHelioAppPage* page : pages)
            decide(page, !m_pages.contains(const_cast<NHelioAppPage*>(page)));
        if (then)
            then(all);
    };
    auto* request =
        new LeaveRequest(pages, LeaveRequest::Purpose::Close, LeaveRequest::Manner::Ask, done, this);
    for (const NHelioAppPage* page : pages)
        m_leaving.insert(page, request);
    request->start();
}

void ShellCentralArea::closeWithoutAsking(const QVector<NHelioAppPage*>& pages)
{
    QVector<NHelioAppPage*> currentLast = pages;
    std::stable_partition(currentLast.begin(), currentLast.end(),
                          [this](const NHelioAppPage* page) { return page != m_current; });
    for (NHelioAppPage* page : pages)
        m_mayClose.insert(page);
    for (NHelioAppPage* page : currentLast) {
        if (m_pages.contains(page))
            page->close();
    }
    for (const NHelioAppPage* page : pages)
        m_mayClose.remove(page);
}

void ShellCentralArea::whenDecided(const NHelioAppPage* page, std::function<void(bool)> listener)
{
    if (m_leaving.contains(page))
        m_deciding.insert(page, std::move(listener));
    else
        listener(!m_pages.contains(const_cast<NHelioAppPage*>(page)));
}

void ShellCentralArea::decide(const NHelioAppPage* page, bool closes)
{
    const auto listeners = m_deciding.values(page);
    m_deciding.remove(page);
    for (const auto& listener : listeners)
        listener(closes);
}

void ShellCentralArea::cancelLeaving()
{
    const QHash<const NHelioAppPage*, QPointer<LeaveRequest>> requests = m_leaving;
    for (const QPointer<LeaveRequest>& request : requests) {
        if (request)
            request->cancel();
    }
}

void ShellCentralArea::releaseInactivePages()
{
    const QVector<NHelioAppPage*> pages = m_pages;
    for (NHelioAppPage* page : pages) {
        if (!m_pages.contains(page) || page == m_current || m_leaving.contains(page))
            continue;
        if ((m_releasedSinceShown.contains(page) && page->isReleased()) || !page->isDiscardable())
            continue;
        m_releasedSinceShown.insert(page);
        page->releasePage();
    }
}

bool ShellCentralArea::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Close && !m_beingAskedToClose.contains(watched))
        return askToClose(watched, event);
    return NHelioCentralArea::eventFilter(watched, event);
}

bool ShellCentralArea::askToClose(QObject* watched, QEvent* closeEvent)
{
    const QPointer<NHelioAppPage> page = qobject_cast<NHelioAppPage*>(watched);
    // The page answers first; only then is it known whether it closes.
    m_beingAskedToClose.insert(watched);
    QCoreApplication::sendEvent(watched, closeEvent);
    m_beingAskedToClose.remove(watched);
    if (!page || !closeEvent->isAccepted() || !m_pages.contains(page))
        return true;
    if (mustBeAsked(page)) {
        closeEvent->ignore();
        askDocuments({page}, {});
        return true;
    }
    stopWatching(page);
    // The parent stays: a page finds its window until its end.
    m_stack->removeWidget(page);
    page->hide();
    forget(page);
    page->deleteLater();
    return true;
}
