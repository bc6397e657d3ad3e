#include "nheliostat/NHelioPage.h"

#include "nheliostat/NHelioSubPage.h"

bool NHelioAppPage::openFiles(const QStringList& args, const QStringList& names, NHelioProxyStrategy strategy,
                              NHelioSubPage* subPage, const QVariantMap& extra)
{
    Q_UNUSED(args)
    Q_UNUSED(names)
    Q_UNUSED(strategy)
    Q_UNUSED(subPage)
    Q_UNUSED(extra)
    return false;
}

bool NHelioAppPage::recoverFiles(const QList<NHelioWorkAreaRecoverItem>& items, int strategy,
                                 NHelioSubPage* subPage)
{
    Q_UNUSED(strategy)
    Q_UNUSED(subPage)
    return !items.isEmpty();
}

void NHelioAppPage::newDocument(const QString& text, const QStringList& args, NHelioProxyStrategy strategy,
                                NHelioSubPage* subPage, const QVariantMap& extra)
{
    if (NHelioSubPage* shown = subPage ? subPage : initialSubPage())
        shown->activate({}, true);
    if (!text.isEmpty())
        notify(text);
    if (!args.isEmpty())
        openFiles(args, {}, strategy, subPage, extra);
    load();
}

bool NHelioAppPage::openLocalFiles(const QStringList& args, const QStringList& names,
                                   NHelioProxyStrategy strategy, NHelioSubPage* subPage,
                                   const QVariantMap& extra, bool activate)
{
    Q_UNUSED(args)
    Q_UNUSED(names)
    Q_UNUSED(strategy)
    Q_UNUSED(subPage)
    Q_UNUSED(extra)
    Q_UNUSED(activate)
    return false;
}

void NHelioAppPage::notifyFocusIn()
{
    setFocus(Qt::OtherFocusReason);
}
