#include "shell/pages/PageDirectory.h"

#include "shell/pages/PageWatch.h"

#include "nheliostat/NHelioPage.h"

#include <QTimer>

#include <algorithm>

namespace shell {

PageDirectory::PageDirectory(QObject* parent)
    : QObject(parent)
{
}

PageDirectory::~PageDirectory() = default;

NHelioAppPage* PageDirectory::find(int id) const
{
    const auto entry = m_entries.find(id);
    return entry != m_entries.end() && entry->second.inWindow ? entry->second.watch->page() : nullptr;
}

int PageDirectory::idOf(const QObject* page) const
{
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(), [page](const auto& each) {
        return each.second.watch->watched() == page;
    });
    return entry == m_entries.end() ? 0 : entry->first;
}

int PageDirectory::idOfPageAround(const QWidget* widget) const
{
    for (; widget; widget = widget->parentWidget()) {
        if (const int id = idOf(widget))
            return id;
    }
    return 0;
}

PageDirectory::Entry* PageDirectory::entryOf(const QObject* page)
{
    const auto entry = m_entries.find(idOf(page));
    return entry == m_entries.end() ? nullptr : &entry->second;
}

void PageDirectory::markLoadAsked(const NHelioAppPage* page)
{
    if (Entry* entry = entryOf(page))
        entry->loadAsked = true;
}

bool PageDirectory::isLoaded(const NHelioAppPage* page) const
{
    const auto entry = m_entries.find(idOf(page));
    return entry != m_entries.end() && entry->second.loadAsked && !page->isReleased();
}

void PageDirectory::onPageAdded(NHelioAppPage* page)
{
    if (Entry* known = entryOf(page)) {
        known->inWindow = true;
        return;
    }
    const int id = ++m_lastId;
    Entry& entry = m_entries[id];
    entry.watch = std::make_unique<PageWatch>(id, page);
    connect(entry.watch.get(), &PageWatch::happened, this, &PageDirectory::onWatchHappened);
    connect(page, &QObject::destroyed, this, &PageDirectory::onPageDestroyed);
    Q_EMIT happened(id, QStringLiteral("created"));
}

void PageDirectory::onPageRemoved(NHelioAppPage* page)
{
    Entry* entry = entryOf(page);
    if (!entry)
        return;
    entry->inWindow = false;
    const int id = entry->watch->id();
    QTimer::singleShot(0, this, [this, id] {
        const auto found = m_entries.find(id);
        if (found != m_entries.end() && !found->second.inWindow)
            close(id);
    });
}

void PageDirectory::onWatchHappened(int id, const QString& what)
{
    if (what == QLatin1String("loadFinished"))
        m_entries.at(id).loadAsked = true;
    Q_EMIT happened(id, what);
}

void PageDirectory::onPageDestroyed(QObject* page)
{
    if (const int id = idOf(page))
        close(id);
}

void PageDirectory::close(int id)
{
    m_entries.erase(id);
    Q_EMIT happened(id, QStringLiteral("closed"));
}

} // namespace shell
