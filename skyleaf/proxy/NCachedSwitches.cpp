#include "proxy/NCachedSwitches.h"

#include "nrt/kcc.h"
#include "proxy/NConfigCentreValues.h"

namespace ncachedswitches {
namespace {

constexpr int accelerateItem = 53613;
constexpr int offlineEditItem = 60708;

QString keyOf(Store store, const QString& name)
{
    const QString folder = store == Store::Accelerate
                               ? QStringLiteral("skyleaf/docsOfflinePage/accelerateSwitch/")
                               : QStringLiteral("skyleaf/docsOfflinePage/offlineEdit/");
    return nrt::kcc::pluginPerfix() + folder + name;
}

} // namespace

QVariantMap entry(Store store)
{
    return nconfigvalues::item(store == Store::Accelerate ? accelerateItem : offlineEditItem).toVariantMap();
}

bool read(const QVariantMap& entry, Store store, const QString& name, bool defaultState)
{
    const QVariant state = entry.value(name);
    if (state.userType() == QMetaType::Bool) {
        nrt::kcc::setValue(keyOf(store, name), state);
        return state.toBool();
    }
    return nrt::kcc::value(keyOf(store, name), defaultState).toBool();
}

} // namespace ncachedswitches
