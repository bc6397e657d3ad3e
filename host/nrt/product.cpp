#include "nrt/product.h"

#include "nrt/RuntimeSetup.h"

namespace nrt::product {

bool getFuncSwitchState(const QString& name, bool defaultState)
{
    return runtime::setup()->productSwitches.value(name, defaultState);
}

bool isEnableMultiLang()
{
    return getFuncSwitchState(QStringLiteral("isEnableMultiLang"), false);
}

QString configValue(const QString& name, const QString& key)
{
    return runtime::setup()->productConfig.value(name + QLatin1Char('/') + key);
}

QString applicationVersion()
{
    return runtime::setup()->applicationVersion;
}

QString applicationName()
{
    return runtime::setup()->applicationName;
}

QString distributionChannel()
{
    return runtime::setup()->channel;
}

} // namespace nrt::product

namespace nrt::kcmc {

bool support(const QString& feature)
{
    return runtime::setup()->features.value(feature, false);
}

bool boolValue(const QString& feature, const QString& key)
{
    return support(feature + QLatin1Char('/') + key);
}

} // namespace nrt::kcmc

namespace nrt::kentrycontrol {

bool isEntryNeedHide(const QString& entry)
{
    return runtime::setup()->hiddenEntries.contains(entry);
}

} // namespace nrt::kentrycontrol
