#include "nheliostat/NHelioSubPage.h"

NHelioSubPages::NHelioSubPages(NHelioPage* page)
    : QObject(page)
{
}

NHelioPage* NHelioSubPages::page() const
{
    return qobject_cast<NHelioPage*>(parent());
}

QVector<NHelioSubPage*> NHelioSubPages::all() const
{
    return findChildren<NHelioSubPage*>(QString(), Qt::FindDirectChildrenOnly).toVector();
}
