#include "page/NCefPreloadClient.h"

#include "base/NReadOnce.h"
#include "nrt/modules.h"

#include <QLibrary>

namespace {

const QString libraryName = QStringLiteral("ncefpreload");
const QString pluginId = QStringLiteral("nheliocefpreload");

} // namespace

NCefPreloadClient& NCefPreloadClient::instance()
{
    static NReadOnce<std::shared_ptr<NCefPreloadClient>> client(
        [] { return std::shared_ptr<NCefPreloadClient>(new NCefPreloadClient); });
    return *client();
}

QString NCefPreloadClient::containerName()
{
    return QStringLiteral("cloudDocsPreCreateBrowser");
}

NCefPreloadClient::NCefPreloadClient()
    : m_library(nrt::loadPluginModule(libraryName, QStringLiteral("./addons/%1").arg(libraryName), pluginId))
{
}

template <typename Function>
Function NCefPreloadClient::resolve(const char* name) const
{
    const std::shared_ptr<QLibrary> library = m_library.lock();
    // Resolving would load a library that was unloaded.
    if (!library || !library->isLoaded())
        return nullptr;
    return reinterpret_cast<Function>(library->resolve(name));
}

bool NCefPreloadClient::createContainer(const QString& name)
{
    const auto create = resolve<ncefpreload::CreateContainer>(ncefpreload::createContainerName);
    return create && create(name);
}

bool NCefPreloadClient::createBrowser(const QString& name, QWidget* page, NHelioBrowserCreator* creator,
                                      const NHelioBrowserCreateInfo& info)
{
    const auto create = resolve<ncefpreload::CreateBrowser>(ncefpreload::createBrowserName);
    return create && create(name, page, creator, info);
}

void NCefPreloadClient::recordFeatureUsed(const QString& name)
{
    if (const auto record = resolve<ncefpreload::RecordFeatureUsed>(ncefpreload::recordFeatureUsedName))
        record(name);
}

bool NCefPreloadClient::recoverContainer(const QString& name, NxWebViewContainer* container)
{
    const auto recover = resolve<ncefpreload::RecoverContainer>(ncefpreload::recoverContainerName);
    return recover && recover(name, container);
}
