#pragma once

#include "shell/config/Result.h"

namespace shell {

/**
 * Makes the data directory and answers its absolute path. An empty `wanted` stands for the user's own place
 * for the application's data. An error names the directory: it cannot be made, is no directory, or cannot be
 * written to.
 */
Result<QString> prepareDataDirectory(const QString& wanted);

} // namespace shell
