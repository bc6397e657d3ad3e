#pragma once

#include "zeolite/NCloudSvrProxy.h"

#include <functional>

/** How the shell answers for the cloud service process; an empty function answers false. */
struct CloudServiceHooks
{
    std::function<bool()> checkRunning;
    std::function<bool(const QString& commandLine, bool wait)> start;
    std::function<bool(int kind, const QString& applicationId, int& resultCode, const QString& title)>
        startDiagnosis;
};

/** The cloud service process as the hooks tell of it. User-interface thread. */
class HookedCloudService final : public NCloudSvrProxy
{
public:
    void setHooks(CloudServiceHooks hooks);

    bool checkTavaRunning() override;
    bool startTavaProcess(const QString& commandLine, bool wait) override;
    bool startDiagnosis(int kind, const QString& applicationId, int& resultCode,
                        const QString& title) override;

private:
    CloudServiceHooks m_hooks;
};
