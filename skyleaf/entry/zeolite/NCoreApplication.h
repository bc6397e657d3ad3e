#pragma once

#include <QString>

class NAccountSdkProxy;
class NCloudSvrProxy;
class NDcInfoC;
class NDomainMgr;
class NFpccomb;
class NPluginManager;

/** The shared services of the process. Every accessor may answer null: callers go on without. */
class NCoreApplication
{
public:
    /** Null before the shared services have started and after they have stopped. */
    static NCoreApplication* instance();

    virtual ~NCoreApplication() = default;
    virtual NDcInfoC* getDcInfo() = 0;
    virtual NFpccomb* getFpccomb() = 0;
    virtual NDomainMgr* getDomainMgr() = 0;
    virtual NPluginManager* getPluginManager() = 0;
    virtual NCloudSvrProxy* getCloudSvrProxy() = 0;
    virtual NAccountSdkProxy* getAccountSDK() = 0;
    /** The debug information of the installation, JSON text; empty when there is none. */
    virtual QString debugInfo() const = 0;
};

namespace zeolite {

/** Whether the shared services report a capability (a bit of their mask). */
bool isSupported(quint32 capability);

/** The user agent of the suite's script core; empty when there is none. */
QString scriptCoreUserAgent();

} // namespace zeolite

namespace NxUserAgentUtil {

/** The user agent of the suite's own requests. */
QString getUserAgent();

} // namespace NxUserAgentUtil
