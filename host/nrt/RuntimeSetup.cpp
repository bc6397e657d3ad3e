#include "nrt/RuntimeSetup.h"

#include <mutex>

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

namespace nrt::runtime {
namespace {

using SetupPtr = std::shared_ptr<const host::Setup>;

struct Current
{
    std::mutex mutex;
    SetupPtr setup;
};

Current& current()
{
    static Current instance;
    return instance;
}

/** The set-up of a program that configured nothing. */
const SetupPtr& lockedSetup(Current& state)
{
    if (!state.setup)
        state.setup = std::make_shared<const host::Setup>(withDefaultDirectories({}));
    return state.setup;
}

QString orDefault(const QString& directory, const QString& defaultDirectory)
{
    return QDir::cleanPath(QDir(directory.isEmpty() ? defaultDirectory : directory).absolutePath());
}

QString installationOfProgram()
{
    if (!QCoreApplication::instance())
        return QDir::currentPath();
    return QDir(QCoreApplication::applicationDirPath()).absoluteFilePath(QStringLiteral(".."));
}

} // namespace

SetupPtr setup()
{
    Current& state = current();
    const std::lock_guard<std::mutex> lock(state.mutex);
    return lockedSetup(state);
}

void changeSetup(const std::function<void(host::Setup&)>& change)
{
    Current& state = current();
    const std::lock_guard<std::mutex> lock(state.mutex);
    auto changed = std::make_shared<host::Setup>(*lockedSetup(state));
    change(*changed);
    state.setup = std::move(changed);
}

host::Setup withDefaultDirectories(host::Setup setup)
{
    const QString userData = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    setup.dataDir = orDefault(setup.dataDir, userData + QStringLiteral("/maravel"));
    setup.installRoot = orDefault(setup.installRoot, installationOfProgram());
    setup.resourceRoot = orDefault(setup.resourceRoot, setup.installRoot + QStringLiteral("/resources"));
    setup.libraryDir = orDefault(setup.libraryDir, setup.installRoot + QStringLiteral("/lib"));
    return setup;
}

} // namespace nrt::runtime
