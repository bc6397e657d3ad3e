#pragma once

#include <QString>

namespace nrt::runtime {

/** Settings stores of the user opened from now on lie below `dataDir`. */
void redirectSettings(const QString& dataDir);

} // namespace nrt::runtime
