#pragma once

#include <QHash>
#include <QMetaType>
#include <QObject>
#include <QString>

class NCloudFpccombProxy;

/** An item of the configuration centre whose values are mirrored into the key-value store. */
struct NFpcCombConfigCenterInfo
{
    int groupId = 0;
    int funcId = 0;
    QString keyPrefix; //!< of the keys that the values are stored under
    QString name;      //!< of the value that is asked for
    QString description;

    bool isValid() const { return groupId >= 1 && funcId >= 1 && !keyPrefix.isEmpty(); }
};
Q_DECLARE_METATYPE(NFpcCombConfigCenterInfo)

/** Keeps one mirror an item that was ever asked for. User-interface thread. */
class NFpcCombCloudMgr : public QObject
{
    Q_OBJECT
public:
    /** Created on first use; lives as long as the process. */
    static NFpcCombCloudMgr& instance();

    /** Has the item mirrored from the next turn of the event loop on. */
    void initProxy(const NFpcCombConfigCenterInfo& info);
    /** The value as it was mirrored last; `defaultValue` for none. Has the item mirrored as well. */
    bool getValue(const NFpcCombConfigCenterInfo& info, bool defaultValue);

public Q_SLOTS:
    void onInitFpccombCloudProxy(const NFpcCombConfigCenterInfo& info);

private:
    NFpcCombCloudMgr();

    QHash<QString, NCloudFpccombProxy*> m_proxies; //!< children; by "group_item"
};
