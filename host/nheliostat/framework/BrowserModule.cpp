#include "nheliostat/framework/BrowserModule.h"

#include "nheliostat/NHelioApplication.h"

#include <QHash>

namespace {

using nheliostat::host::BrowserModuleFunction;

QHash<QString, BrowserModuleFunction>& functions()
{
    static QHash<QString, BrowserModuleFunction> byName;
    return byName;
}

} // namespace

void nheliostat::host::setBrowserModuleFunction(const QString& name, BrowserModuleFunction function)
{
    if (function)
        functions().insert(name, std::move(function));
    else
        functions().remove(name);
}

bool helioBrowserModuleCallProxy(const QString& name, const QVariant& argument, QVariant* result)
{
    // A copy: the function may replace itself.
    const BrowserModuleFunction function = functions().value(name);
    return function && function(argument, result);
}
