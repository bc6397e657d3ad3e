#include "proxy/NCloudDocsRecordManager.h"

#include <QCoreApplication>

// Nothing is remembered yet: reads answer as for files that were never opened.

NCloudDocsRecordManager* NCloudDocsRecordManager::instance()
{
    return nullptr;
}

EnvConfigRecord NCloudDocsRecordManager::retrieveEnvConfigRecord(const QString& fileId) const
{
    Q_UNUSED(fileId)
    return {};
}

void NCloudDocsRecordManager::updateEnvConfigRecord(const QString& fileId, const QString& frontVer)
{
    Q_UNUSED(fileId)
    Q_UNUSED(frontVer)
}

QString NCloudDocsRecordManager::retrievePluginPathRecord(const QString& officeType,
                                                          const QString& frontVer) const
{
    Q_UNUSED(officeType)
    Q_UNUSED(frontVer)
    return {};
}

void NCloudDocsRecordManager::updatePluginPathRecord(const QString& officeType, const QString& frontVer,
                                                     const QString& pluginPath)
{
    Q_UNUSED(officeType)
    Q_UNUSED(frontVer)
    Q_UNUSED(pluginPath)
}

namespace nversioncheckcache {

QString get(const QString& key)
{
    Q_UNUSED(key)
    return {};
}

void set(const QString& key, const QString& officeType)
{
    Q_UNUSED(key)
    Q_UNUSED(officeType)
}

} // namespace nversioncheckcache
