#include "nheliostat/NHelioSubPage.h"

NHelioSubPage::NHelioSubPage(NHelioSubPages* subPages)
    : QObject(subPages)
{
}

NHelioPage* NHelioSubPage::page() const
{
    const auto* subPages = qobject_cast<const NHelioSubPages*>(parent());
    return subPages ? subPages->page() : nullptr;
}

int NHelioSubPage::pageType() const
{
    const NHelioPage* owner = page();
    return owner ? owner->widgetType() : -1;
}

void NHelioSubPage::setWindowTitle(const QString& title)
{
    if (title == m_windowTitle)
        return;
    m_windowTitle = title;
    Q_EMIT windowTitleChanged(title);
}

void NHelioSubPage::refreshIcon()
{
    Q_EMIT iconChanged();
}

void NHelioSubPage::activate(const QString& name, bool flag)
{
    Q_UNUSED(name)
    Q_UNUSED(flag)
    Q_EMIT activationRequested();
}

bool NHelioSubPage::getWorkAreaRecoverItem(NHelioWorkAreaRecoverItem* item)
{
    if (!item || !page())
        return false;
    item->id = m_workAreaItemId;
    item->pageType = pageType();
    item->title = m_windowTitle;
    return true;
}

NHelioTabDelegate* NHelioSubPage::createTabDelegate(QObject* parent)
{
    return new NHelioTabDelegate(parent);
}

void NHelioSubPage::doAttachContextMenuActions(QMenu* menu)
{
    Q_UNUSED(menu)
}
