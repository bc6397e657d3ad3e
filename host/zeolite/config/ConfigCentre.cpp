#include "zeolite/config/ConfigCentre.h"

#include <QTimer>

#include "zeolite/config/ConfigCentreFile.h"

namespace {

/** The keys whose item is new, gone or another one. */
QList<QPair<int, int>> changedKeys(const ConfigItems& before, const ConfigItems& after)
{
    QList<QPair<int, int>> keys;
    for (auto item = before.begin(); item != before.end(); ++item) {
        const auto now = after.find(item.key());
        if (now == after.end() || *now != *item)
            keys.append(item.key());
    }
    for (auto item = after.begin(); item != after.end(); ++item) {
        if (!before.contains(item.key()))
            keys.append(item.key());
    }
    return keys;
}

} // namespace

ConfigCentre::ConfigCentre(const QString& filePath, QSet<int> delayedGroups)
    : m_delayedGroups(std::move(delayedGroups))
{
    if (filePath.isEmpty())
        return;
    m_file = new ConfigCentreFile(filePath, this);
    m_fromFile = m_file->items();
    connect(m_file, &ConfigCentreFile::itemsChanged, this, &ConfigCentre::onFileItemsChanged);
}

QList<NFpccombData> ConfigCentre::getData(int group, int item) const
{
    const QPair<int, int> key(group, item);
    for (const ConfigItems* items : {&m_set, &m_fromFile}) {
        const auto found = items->find(key);
        if (found != items->end())
            return {NFpccombData(*found)};
    }
    return {};
}

bool ConfigCentre::hasInitFinished(int group) const
{
    return !m_delayedGroups.contains(group);
}

void ConfigCentre::addInitFinishedWatch(int group, QObject* context, Watch watch)
{
    m_initWatches.add({group, 0}, context, std::move(watch));
    if (hasInitFinished(group))
        QTimer::singleShot(0, this, [this, group] { m_initWatches.callOnce({group, 0}); });
}

void ConfigCentre::removeInitFinishedWatch(int group, QObject* context)
{
    m_initWatches.remove({group, 0}, context);
}

void ConfigCentre::addWatch(int group, int item, QObject* context, Watch watch)
{
    m_watches.add({group, item}, context, std::move(watch));
}

void ConfigCentre::removeWatch(int group, int item, QObject* context)
{
    m_watches.remove({group, item}, context);
}

void ConfigCentre::setI18nCacheToConfigCenter(int projectType, const QString& name, const QString& text)
{
    m_i18nTexts.insert({projectType, name}, text);
}

void ConfigCentre::set(int group, int item, const QJsonObject& object)
{
    const ConfigItems before = effectiveItems();
    m_set.insert({group, item}, object);
    callChanged(before);
}

void ConfigCentre::finishInit(int group)
{
    if (m_delayedGroups.remove(group))
        m_initWatches.callOnce({group, 0});
}

QString ConfigCentre::i18nText(int projectType, const QString& name) const
{
    return m_i18nTexts.value({projectType, name});
}

void ConfigCentre::onFileItemsChanged()
{
    const ConfigItems before = effectiveItems();
    const ConfigItems fromFile = m_file->items();
    for (const auto& key : changedKeys(m_fromFile, fromFile))
        m_set.remove(key);
    m_fromFile = fromFile;
    callChanged(before);
}

ConfigItems ConfigCentre::effectiveItems() const
{
    ConfigItems items = m_fromFile;
    for (auto item = m_set.begin(); item != m_set.end(); ++item)
        items.insert(item.key(), item.value());
    return items;
}

void ConfigCentre::callChanged(const ConfigItems& before)
{
    for (const auto& key : changedKeys(before, effectiveItems()))
        m_watches.call(key);
}
