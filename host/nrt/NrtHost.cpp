#include "nrt/NrtHost.h"

#include "nrt/RuntimeSetup.h"
#include "nrt/SettingsLocation.h"

namespace nrt::host {

void configure(Setup setup)
{
    Setup complete = runtime::withDefaultDirectories(std::move(setup));
    runtime::redirectSettings(complete.dataDir);
    runtime::changeSetup([&complete](Setup& current) { current = std::move(complete); });
}

void setProductSwitch(const QString& name, bool on)
{
    runtime::changeSetup([&](Setup& setup) { setup.productSwitches.insert(name, on); });
}

void setFeature(const QString& name, bool on)
{
    runtime::changeSetup([&](Setup& setup) { setup.features.insert(name, on); });
}

} // namespace nrt::host
