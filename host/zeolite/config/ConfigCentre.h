#pragma once

#include "zeolite/NFpccomb.h"
#include "zeolite/config/ConfigItems.h"
#include "zeolite/config/WatchList.h"

#include <QMap>
#include <QObject>
#include <QSet>

class ConfigCentreFile;

/**
 * The configuration centre: the items of the host file, with those that were set at run time on top until the
 * file changes them. User-interface thread.
 */
class ConfigCentre final : public QObject, public NFpccomb
{
    Q_OBJECT
public:
    /** Without a file path there is only what is set at run time. Groups not delayed have finished
     * initialising. */
    ConfigCentre(const QString& filePath, QSet<int> delayedGroups);

    QList<NFpccombData> getData(int group, int item) const override;
    bool hasInitFinished(int group) const override;
    /** For a group that has finished the watch is called at the next turn of the event loop. */
    void addInitFinishedWatch(int group, QObject* context, Watch watch) override;
    void removeInitFinishedWatch(int group, QObject* context) override;
    void addWatch(int group, int item, QObject* context, Watch watch) override;
    void removeWatch(int group, int item, QObject* context) override;
    void setI18nCacheToConfigCenter(int projectType, const QString& name, const QString& text) override;

    void set(int group, int item, const QJsonObject& object);
    void finishInit(int group);
    /** What `setI18nCacheToConfigCenter` kept. */
    QString i18nText(int projectType, const QString& name) const;

private Q_SLOTS:
    void onFileItemsChanged();

private:
    ConfigItems effectiveItems() const;
    void callChanged(const ConfigItems& before);

    ConfigCentreFile* m_file = nullptr; //!< a child; null without a file path
    ConfigItems m_fromFile;
    ConfigItems m_set;
    QSet<int> m_delayedGroups;
    WatchList m_watches;
    WatchList m_initWatches;
    QMap<QPair<int, QString>, QString> m_i18nTexts;
};
