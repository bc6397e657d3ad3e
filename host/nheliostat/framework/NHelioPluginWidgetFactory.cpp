#include "nheliostat/NHelioPluginWidgetFactory.h"

#include "zeolite/NxLoggerLite.h"

#include <QGlobalStatic>
#include <QHash>

namespace {

using Item = NHelioPluginWidgetFactoryItemBase;

struct Registry
{
    QHash<int, Item*> byType;
    QHash<QString, Item*> byName;
};

// Items of modules that stay loaded go after everything else: the registry may be gone by then.
Q_GLOBAL_STATIC(Registry, registry)

template <typename Key>
void add(QHash<Key, Item*>& items, const Key& key, Item* item, const QString& keyText)
{
    if (items.value(key, item) != item)
        NxLoggerLite::writeWarning(
            QStringLiteral("nheliostat"),
            QStringLiteral("page type %1 is registered again; the last one counts").arg(keyText));
    items.insert(key, item);
}

template <typename Key>
void removeSame(QHash<Key, Item*>& items, const Key& key, const Item* item)
{
    if (items.value(key, nullptr) == item)
        items.remove(key);
}

} // namespace

void NHelioPluginWidgetFactory::registerPagePlugin(NHelioPluginWidgetFactoryItemBase* item)
{
    if (!item || registry.isDestroyed())
        return;
    if (item->type() != -1)
        add(registry->byType, item->type(), item, QString::number(item->type()));
    else
        add(registry->byName, item->strType(), item, item->strType());
}

void NHelioPluginWidgetFactory::unregisterPagePlugin(NHelioPluginWidgetFactoryItemBase* item)
{
    if (item && !registry.isDestroyed())
        removeSame(registry->byType, item->type(), item);
}

void NHelioPluginWidgetFactory::unregisterStrPagePlugin(NHelioPluginWidgetFactoryItemBase* item)
{
    if (item && !registry.isDestroyed())
        removeSame(registry->byName, item->strType(), item);
}

NHelioPluginWidgetFactoryItemBase* NHelioPluginWidgetFactory::findItem(int type)
{
    return registry.isDestroyed() ? nullptr : registry->byType.value(type, nullptr);
}
