#pragma once

#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/NHelioSubPage.h"

#include <QHash>
#include <QPointer>

#include <functional>
#include <optional>

/** Keeps, in memory, what the sub pages of one window show. User-interface thread. */
class ShellWorkAreaManager final : public NHelioWorkAreaManager
{
public:
    /** What an item became is not asked for while a page waits for its load; see ShellCentralArea. */
    static constexpr const char* waitingItemProperty = "waitingRecoverItem";

    /** `changed` is called when an item became another. */
    void setListener(std::function<void()> changed) { m_changed = std::move(changed); }
    /** Starts to keep the page's initial sub page if it can be kept; gives it its id. */
    void addPage(NHelioPage* page);
    /** Stops keeping the page's sub page. The page may be dying: it is only compared. */
    void removePage(const NHelioPage* page);
    /** A page that is released, or waits for its first load, keeps the item that it has. */
    void updateItem(const QString& id) override;

    /** What is shown, in no particular order; sub pages with nothing to recover are left out. */
    QList<NHelioWorkAreaRecoverItem> items() const;
    /** What a page shows, if there is something to recover. */
    std::optional<NHelioWorkAreaRecoverItem> itemOf(const NHelioPage* page) const;

private:
    struct Entry
    {
        const NHelioPage* page = nullptr;
        QPointer<NHelioSubPage> subPage;
        bool recoverable = false;
        NHelioWorkAreaRecoverItem item;
    };

    void ask(Entry& entry) const;

    QHash<QString, Entry> m_entries;
    std::function<void()> m_changed;
};
