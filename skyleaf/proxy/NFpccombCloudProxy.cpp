#include "proxy/NFpccombCloudProxy.h"

QVariant NFpccombCloudProxy::value(const QString& name, const QVariant& defaultValue) const
{
    const QReadLocker locker(&m_lock);
    return m_values.value(name, defaultValue);
}

void NFpccombCloudProxy::takeValues(const QVariantMap& values)
{
    QVariantMap unseen;
    {
        const QReadLocker locker(&m_lock);
        for (auto value = values.begin(); value != values.end(); ++value) {
            if (!m_values.contains(value.key()))
                unseen.insert(value.key(), value.value());
        }
    }
    if (unseen.isEmpty())
        return;
    const QWriteLocker locker(&m_lock);
    for (auto value = unseen.begin(); value != unseen.end(); ++value)
        m_values.insert(value.key(), value.value());
}
