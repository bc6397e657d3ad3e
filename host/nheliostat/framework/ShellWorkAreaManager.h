#pragma once

#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/NHelioSubPage.h"

#include <QHash>
#include <QPointer>

/** Keeps, in memory, what the sub pages of one window show. User-interface thread. */
class ShellWorkAreaManager final : public NHelioWorkAreaManager
{
public:
    /** Starts to keep the page's initial sub page if it can be kept; gives it its id. */
    void addPage(NHelioPage* page);
    /** Stops keeping the page's sub page. The page may be dying: it is only compared. */
    void removePage(const NHelioPage* page);
    void updateItem(const QString& id) override;

    /** What is shown, in no particular order; sub pages with nothing to recover are left out. */
    QList<NHelioWorkAreaRecoverItem> items() const;

private:
    struct Entry
    {
        const NHelioPage* page = nullptr;
        QPointer<NHelioSubPage> subPage;
        bool recoverable = false;
        NHelioWorkAreaRecoverItem item;
    };

    QHash<QString, Entry> m_entries;
};
