#include "nrt/modules.h"

#include <mutex>

#include <QDir>
#include <QHash>
#include <QLibrary>
#include <QLoggingCategory>

#include "nrt/RuntimeSetup.h"

namespace nrt {
namespace {

Q_LOGGING_CATEGORY(lcModules, "nrt.modules")

struct LoadedModules
{
    std::mutex mutex;
    QHash<QString, std::shared_ptr<QLibrary>> byPath;
};

} // namespace

QString getLibFileName(const QString& name)
{
    return QStringLiteral("lib%1.so").arg(name);
}

std::shared_ptr<QLibrary> loadPluginModule(const QString& name, const QString& relativePath,
                                           const QString& pluginId)
{
    static LoadedModules modules;

    const QDir directory(QDir(runtime::setup()->libraryDir).filePath(relativePath));
    const QString path = QDir::cleanPath(directory.absoluteFilePath(getLibFileName(name)));
    const std::lock_guard<std::mutex> lock(modules.mutex);
    if (auto known = modules.byPath.value(path))
        return known;
    auto library = std::make_shared<QLibrary>(path);
    if (!library->load()) {
        qCWarning(lcModules, "library %s of \"%s\" not loaded: %s", qUtf8Printable(path),
                  qUtf8Printable(pluginId.isEmpty() ? name : pluginId),
                  qUtf8Printable(library->errorString()));
        return nullptr;
    }
    modules.byPath.insert(path, library);
    return library;
}

} // namespace nrt
