#pragma once

#include <QString>

/** Switches and values of the product as it was built and deployed. Any thread. */
namespace nrt::product {

bool getFuncSwitchState(const QString& name, bool defaultState);
bool isEnableMultiLang();
/** A text value of the deployment, such as ("PluginPlatformProductName", "value"); empty when not set. */
QString configValue(const QString& name, const QString& key);
QString applicationVersion();
QString applicationName();
/** The distribution channel of the installation. */
QString distributionChannel();

} // namespace nrt::product

/** Features that a deployment supports. */
namespace nrt::kcmc {

bool support(const QString& feature);
bool boolValue(const QString& feature, const QString& key);

} // namespace nrt::kcmc

namespace nrt::kentrycontrol {

/** True when the deployment hides the entry (a path such as "skyleaf/docoffline"). */
bool isEntryNeedHide(const QString& entry);

} // namespace nrt::kentrycontrol
