#pragma once

#include <QString>

/** The cloud service process, as the shared services see it. */
class NCloudSvrProxy
{
public:
    virtual ~NCloudSvrProxy() = default;

    virtual bool checkTavaRunning() = 0;
    virtual bool startTavaProcess(const QString& commandLine, bool wait) = 0;
    /** Starts the diagnosis tool; `title` is Base64. False when the tool of that kind cannot be started. */
    virtual bool startDiagnosis(int kind, const QString& applicationId, int& resultCode,
                                const QString& title) = 0;
};
