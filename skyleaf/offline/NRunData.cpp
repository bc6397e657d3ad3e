#include "offline/NRunData.h"

#include "offline/NDOPResourceManager.h"

#include <QStringList>

#include <utility>

namespace NDocsOfflinePage {

NRunData::NRunData(NRunIdentity identity, const QString& url)
    : m_identity(std::move(identity))
{
    const auto manager = NDOPResourceManager::instance();
    manager->createInjectRecord(m_identity.injectId);
    manager->setInjectConnId(m_identity.injectId, m_identity.connId);
    manager->setInjectUrl(m_identity.injectId, url);
}

NRunData::~NRunData()
{
    const auto manager = NDOPResourceManager::instance();
    manager->removeInjectRecord(m_identity.injectId);
    for (const QString& kind : prefetchedReplies())
        manager->clearRequest(kind, m_identity.fileId, m_identity.officeType, m_identity.connId);
}

void NRunData::copyLocalData(const NRunData& earlier)
{
    NDOPResourceManager::instance()->copyInjectLocalData(earlier.m_identity.injectId, m_identity.injectId);
}

void NRunData::expectNothing()
{
    for (const QString& kind : prefetchedReplies())
        NDOPResourceManager::instance()->setResponseData(kind, m_identity.fileId, m_identity.officeType,
                                                         m_identity.connId, {});
}

std::optional<NDOPResponseData> NRunData::reply(const QString& kind) const
{
    return NDOPResourceManager::instance()->responseData(kind, m_identity.fileId, m_identity.officeType,
                                                         m_identity.connId);
}

QStringList prefetchedReplies()
{
    return {QStringLiteral("open_file"), QStringLiteral("get_env_config"), QStringLiteral("get_ssr_content")};
}

} // namespace NDocsOfflinePage
