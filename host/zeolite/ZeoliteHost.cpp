#include "zeolite/ZeoliteHost.h"

#include <atomic>

#include <QDateTime>
#include <QDir>
#include <QSysInfo>

#include "nrt/product.h"

namespace {

std::atomic<ZeoliteHost*> currentHost{nullptr};

zeolite::Setup withDefaults(zeolite::Setup setup)
{
    if (setup.userAgent.isEmpty())
        setup.userAgent =
            QStringLiteral("Mozilla/5.0 (X11; Linux x86_64) pc-office/") + nrt::product::applicationVersion();
    return setup;
}

QString eventFile(const zeolite::Setup& setup)
{
    const bool isWritten = setup.collectsData && !setup.dataDir.isEmpty();
    return !isWritten ? QString() : QDir(setup.dataDir).filePath(QStringLiteral("events.jsonl"));
}

} // namespace

ZeoliteHost::ZeoliteHost(zeolite::Setup setup)
    : m_setup(withDefaults(std::move(setup)))
    , m_logFile(m_setup.logFile)
    , m_dataCollection(eventFile(m_setup), QString::fromLatin1(QSysInfo::machineUniqueId()),
                       &QDateTime::currentMSecsSinceEpoch)
    , m_configCentre(m_setup.hostFile, m_setup.delayedGroups)
    , m_domains(m_setup.domains, m_setup.mainDomain, m_setup.documentsServiceHost, m_setup.intranet)
    , m_plugins(m_setup.plugins)
{
    Q_ASSERT_X(!currentHost, "ZeoliteHost", "there is one per process");
    currentHost = this;
}

ZeoliteHost::~ZeoliteHost()
{
    currentHost = nullptr;
}

NDcInfoC* ZeoliteHost::getDcInfo()
{
    return m_setup.collectsData ? &m_dataCollection : nullptr;
}

NFpccomb* ZeoliteHost::getFpccomb()
{
    return &m_configCentre;
}

NDomainMgr* ZeoliteHost::getDomainMgr()
{
    return &m_domains;
}

NPluginManager* ZeoliteHost::getPluginManager()
{
    return &m_plugins;
}

NCloudSvrProxy* ZeoliteHost::getCloudSvrProxy()
{
    return &m_cloudService;
}

QString ZeoliteHost::debugInfo() const
{
    return m_setup.debugInfo;
}

NCoreApplication* NCoreApplication::instance()
{
    return currentHost;
}

bool zeolite::isSupported(quint32 capability)
{
    const ZeoliteHost* host = currentHost;
    return host && capability != 0 && (host->setup().capabilities & capability) == capability;
}

QString zeolite::scriptCoreUserAgent()
{
    const ZeoliteHost* host = currentHost;
    return host ? host->setup().scriptCoreUserAgent : QString();
}

QString NxUserAgentUtil::getUserAgent()
{
    const ZeoliteHost* host = currentHost;
    return host ? host->setup().userAgent : withDefaults({}).userAgent;
}
