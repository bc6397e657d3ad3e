#pragma once

#include "proxy/NFpccombMirror.h"

#include <QReadWriteLock>
#include <QVariantMap>

/** Mirrors an item of the configuration centre and keeps its values at hand. Values may be read from any
 * thread. */
class NFpccombCloudProxy final : public NFpccombMirror
{
    Q_OBJECT
public:
    using NFpccombMirror::NFpccombMirror;

    /** The value as it was when its name was first seen; `defaultValue` for a name not seen yet. */
    QVariant value(const QString& name, const QVariant& defaultValue = {}) const;

protected:
    void takeValues(const QVariantMap& values) override;

private:
    mutable QReadWriteLock m_lock;
    QVariantMap m_values;
};
