#include "nheliostat/framework/ShellWorkAreaManager.h"

#include <QUuid>

void ShellWorkAreaManager::addPage(NHelioPage* page)
{
    NHelioSubPage* subPage = page->initialSubPage();
    if (!subPage || !subPage->supportsWorkArea())
        return;
    const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    subPage->setWorkAreaItemId(id);
    m_entries.insert(id, {page, subPage, false, {}});
    updateItem(id);
}

void ShellWorkAreaManager::removePage(const NHelioPage* page)
{
    for (auto entry = m_entries.begin(); entry != m_entries.end();) {
        if (entry->page != page) {
            ++entry;
            continue;
        }
        if (entry->subPage)
            entry->subPage->setWorkAreaItemId({});
        entry = m_entries.erase(entry);
    }
}

void ShellWorkAreaManager::updateItem(const QString& id)
{
    const auto entry = m_entries.find(id);
    if (entry == m_entries.end() || !entry->subPage)
        return;
    ask(*entry);
    if (m_changed)
        m_changed();
}

void ShellWorkAreaManager::ask(Entry& entry) const
{
    const NHelioPage* page = entry.subPage->page();
    const QVariant waiting = page ? page->property(waitingItemProperty) : QVariant();
    NHelioWorkAreaRecoverItem item;
    if (waiting.isValid()) {
        item = waiting.value<NHelioWorkAreaRecoverItem>();
        item.id = entry.subPage->workAreaItemId();
        entry.recoverable = true;
    } else {
        const auto* appPage = qobject_cast<const NHelioAppPage*>(page);
        if (entry.recoverable && appPage && appPage->isReleased())
            return;
        entry.recoverable = entry.subPage->getWorkAreaRecoverItem(&item);
    }
    entry.item = item;
}

QList<NHelioWorkAreaRecoverItem> ShellWorkAreaManager::items() const
{
    QList<NHelioWorkAreaRecoverItem> shown;
    for (const Entry& entry : m_entries) {
        if (entry.recoverable)
            shown.append(entry.item);
    }
    return shown;
}

std::optional<NHelioWorkAreaRecoverItem> ShellWorkAreaManager::itemOf(const NHelioPage* page) const
{
    const NHelioSubPage* subPage = page->initialSubPage();
    const auto entry = subPage ? m_entries.find(subPage->workAreaItemId()) : m_entries.end();
    if (entry == m_entries.end() || !entry->recoverable)
        return std::nullopt;
    return entry->item;
}
