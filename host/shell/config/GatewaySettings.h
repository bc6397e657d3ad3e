#pragma once

#include "nheliostat/gateway/GatewayLimits.h"

#include <QVariant>

#include <functional>

namespace shell {

/**
 * The gateway's limits of time as settings have them: `value` is asked for each by its name ("idleMs",
 * "silenceMs", …) and answers with an invalid value when it is not set. What is no whole number from 1 ms to
 * a day leaves the default.
 */
GatewayLimits gatewayLimits(const std::function<QVariant(const QString& name)>& value);

} // namespace shell
