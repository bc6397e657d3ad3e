#pragma once

#include "zeolite/NAccountSdkProxy.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/ZeoliteSetup.h"
#include "zeolite/collect/DataCollection.h"
#include "zeolite/config/ConfigCentre.h"
#include "zeolite/logging/LogWriter.h"
#include "zeolite/plugins/PluginStore.h"
#include "zeolite/services/CloudServiceHooks.h"
#include "zeolite/services/DomainTable.h"
#include "zeolite/services/PoolThreads.h"

#include <memory>

/**
 * The shared services of a process. The program creates one, after `nrt::host::configure`, and keeps it while
 * pages live; NCoreApplication::instance() and NThreadPool::globalInstance() answer it as long.
 *
 * Made and destroyed on the user-interface thread. Destruction waits for the tasks of the pool.
 */
class ZeoliteHost final : public NCoreApplication
{
public:
    explicit ZeoliteHost(zeolite::Setup setup);
    ~ZeoliteHost() override;
    ZeoliteHost(const ZeoliteHost&) = delete;
    ZeoliteHost& operator=(const ZeoliteHost&) = delete;

    NDcInfoC* getDcInfo() override;
    NFpccomb* getFpccomb() override;
    NDomainMgr* getDomainMgr() override;
    NPluginManager* getPluginManager() override;
    NCloudSvrProxy* getCloudSvrProxy() override;
    NAccountSdkProxy* getAccountSDK() override { return &m_account; }
    QString debugInfo() const override;

    const zeolite::Setup& setup() const { return m_setup; }
    LogWriter& log() { return LogWriter::global(); }
    DataCollection& dataCollection() { return m_dataCollection; }
    ConfigCentre& configCentre() { return m_configCentre; }
    PluginStore& plugins() { return m_plugins; }
    void setCloudServiceHooks(CloudServiceHooks hooks) { m_cloudService.setHooks(std::move(hooks)); }
    /** Null (the start) for none. */
    void setAuthProvider(std::unique_ptr<NAccountAuthProvider> provider)
    {
        m_account.set(std::move(provider));
    }

private:
    /** Opens the log file before, and closes it after, everything that logs. */
    class LogFile
    {
    public:
        explicit LogFile(const QString& path) { LogWriter::global().setFile(path); }
        ~LogFile() { LogWriter::global().setFile({}); }
        LogFile(const LogFile&) = delete;
        LogFile& operator=(const LogFile&) = delete;
    };

    class Account final : public NAccountSdkProxy
    {
    public:
        void set(std::unique_ptr<NAccountAuthProvider> provider) { m_provider = std::move(provider); }
        NAccountAuthProvider* getAuthProvider() override { return m_provider.get(); }

    private:
        std::unique_ptr<NAccountAuthProvider> m_provider;
    };

    const zeolite::Setup m_setup;
    LogFile m_logFile;
    DataCollection m_dataCollection;
    ConfigCentre m_configCentre;
    DomainTable m_domains;
    PluginStore m_plugins;
    HookedCloudService m_cloudService;
    Account m_account;
    PoolThreads m_poolThreads;
};
