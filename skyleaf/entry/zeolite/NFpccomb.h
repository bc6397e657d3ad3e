#pragma once

#include <QJsonObject>
#include <QList>
#include <QVariantMap>

#include <functional>

class QObject;

/** One element of an item of the configuration centre. */
class NFpccombData
{
public:
    explicit NFpccombData(QJsonObject object)
        : m_object(std::move(object))
    {
    }
    QJsonObject jsonObject() const { return m_object; }
    QVariantMap map() const { return m_object.toVariantMap(); }

private:
    QJsonObject m_object;
};

/** The configuration centre: items addressed by group and number, changing at run time. User-interface
 * thread. */
class NFpccomb
{
public:
    /** Called with (group, item). */
    using Watch = std::function<void(qint64, qint64)>;

    virtual ~NFpccomb() = default;

    /** The item's elements; empty when the group or item is missing. */
    virtual QList<NFpccombData> getData(int group, int item) const = 0;

    virtual bool hasInitFinished(int group) const = 0;
    /** Calls `watch` (group, 0) once, when the group has finished initialising; dropped with `context`. */
    virtual void addInitFinishedWatch(int group, QObject* context, Watch watch) = 0;
    /** Drops the watches of `context` that wait for the initialisation of the group. */
    virtual void removeInitFinishedWatch(int group, QObject* context) = 0;

    /** Calls `watch` after every change of the item; dropped with `context`. */
    virtual void addWatch(int group, int item, QObject* context, Watch watch) = 0;
    virtual void removeWatch(int group, int item, QObject* context) = 0;

    /** Keeps a translated text of the configuration centre under its name. */
    virtual void setI18nCacheToConfigCenter(int projectType, const QString& name, const QString& text) = 0;
};
