#pragma once

#include <QObject>
#include <QString>
#include <QVariant>

class NFpccomb;

/** Copies the values of one item of the configuration centre into the key-value store. User-interface thread.
 */
class NFpccombMirror : public QObject
{
    Q_OBJECT
public:
    explicit NFpccombMirror(QObject* parent = nullptr);

    /**
     * Copies the item now, or once the group has finished initialising, and after every change unless `watch`
     * is off. False for ids below 1, an empty prefix, or without a configuration centre.
     */
    bool init(int groupId, int funcId, const QString& keyPrefix, bool watch = true);

public Q_SLOTS:
    void onAppQuit();
    void onWatchFpcDataInitEvent(qint64 groupId, qint64 funcId);
    void onWatchFpcDataUpdateEvent(qint64 groupId, qint64 funcId);

protected:
    /** Takes the values that were read, by name. */
    virtual void takeValues(const QVariantMap& values);

private:
    void synchronise();
    void copyValues();

    int m_groupId = 0;
    int m_funcId = 0;
    QString m_keyPrefix;
    bool m_watch = true;
};

namespace nfpccombvalues {

/** A value of an item as the store keeps it: bool, integer, text, JSON object or array; invalid for null. */
QVariant storable(const QJsonValue& value);
/** The kind of project that the translated texts of a group belong to. */
int projectType(int groupId);

} // namespace nfpccombvalues
