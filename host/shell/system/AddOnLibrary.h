#pragma once

#include <QString>

namespace shell {

/**
 * Loads the add-on "lib<name>.so" from `directory`; it registers itself. Empty, or the error text.
 *
 * It stays loaded until the process ends, and unregisters itself then: the services keep texts whose
 * characters lie in the add-on's own constant data.
 */
QString loadAddOnLibrary(const QString& directory, const QString& name);

} // namespace shell
