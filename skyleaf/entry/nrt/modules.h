#pragma once

#include <QFunctionPointer>
#include <QString>

#include <memory>

class QLibrary;

namespace nrt {

/** The platform's file name of a library: "name" becomes "libname.so". */
QString getLibFileName(const QString& name);

/**
 * Loads a library of the installation by name, once per process, and keeps it loaded; a second call gives the
 * same object. `relativePath` is where it lies below the installation's library directory ("" for the
 * directory itself), `pluginId` the plug-in that it belongs to, for the log. Null when it is missing or
 * cannot be loaded; the reason is logged.
 */
std::shared_ptr<QLibrary> loadPluginModule(const QString& name, const QString& relativePath = {},
                                           const QString& pluginId = {});

} // namespace nrt
