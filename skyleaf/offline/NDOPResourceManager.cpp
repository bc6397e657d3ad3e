#include "offline/NDOPResourceManager.h"

#include "base/NDocsLog.h"

namespace NDocsOfflinePage {

// Nothing is served from local data yet: preloading is off and no injection record exists.

std::shared_ptr<NDOPResourceManager> NDOPResourceManager::instance()
{
    static const std::shared_ptr<NDOPResourceManager> manager(new NDOPResourceManager);
    return manager;
}

void NDOPResourceManager::loadLocalResources(const QString& fileId, const QString& officeType,
                                             const QString& frontVer)
{
    Q_UNUSED(frontVer)
    loadLocalResources(fileId, officeType);
}

void NDOPResourceManager::loadLocalResources(const QString& fileId, const QString& officeType)
{
    Q_UNUSED(fileId)
    Q_UNUSED(officeType)
    ndocslog::info(QStringLiteral("preloading is not enabled"),
                   "NDocsOfflinePage::NDOPResourceManager::loadLocalResources");
}

void NDOPResourceManager::createInjectRecord(const QString& injectId)
{
    Q_UNUSED(injectId)
}

void NDOPResourceManager::removeInjectRecord(const QString& injectId)
{
    Q_UNUSED(injectId)
}

void NDOPResourceManager::setInjectConnId(const QString& injectId, const QString& connId)
{
    Q_UNUSED(injectId)
    Q_UNUSED(connId)
}

void NDOPResourceManager::setInjectUrl(const QString& injectId, const QString& url)
{
    Q_UNUSED(injectId)
    Q_UNUSED(url)
}

QString NDOPResourceManager::injectScriptFor(const QString& injectId, const QString& officeType,
                                             const QVariant& list) const
{
    Q_UNUSED(injectId)
    Q_UNUSED(officeType)
    Q_UNUSED(list)
    return {};
}

} // namespace NDocsOfflinePage
