#include "zeolite/services/CloudServiceHooks.h"

void HookedCloudService::setHooks(CloudServiceHooks hooks)
{
    m_hooks = std::move(hooks);
}

bool HookedCloudService::checkTavaRunning()
{
    return m_hooks.checkRunning && m_hooks.checkRunning();
}

bool HookedCloudService::startTavaProcess(const QString& commandLine, bool wait)
{
    return m_hooks.start && m_hooks.start(commandLine, wait);
}

bool HookedCloudService::startDiagnosis(int kind, const QString& applicationId, int& resultCode,
                                        const QString& title)
{
    return m_hooks.startDiagnosis && m_hooks.startDiagnosis(kind, applicationId, resultCode, title);
}
