#pragma once

#include <QString>
#include <QVariant>

#include <functional>

namespace nheliostat::host {

/** A function of the browser module: false when it failed; `result` may be null. */
using BrowserModuleFunction = std::function<bool(const QVariant& argument, QVariant* result)>;

/** What helioBrowserModuleCallProxy calls under the name; an empty function removes it. User-interface
 * thread. */
void setBrowserModuleFunction(const QString& name, BrowserModuleFunction function);

} // namespace nheliostat::host
