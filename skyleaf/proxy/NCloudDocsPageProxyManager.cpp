#include "proxy/NCloudDocsPageProxyManager.h"

#include "base/NClock.h"
#include "base/NDocsLog.h"
#include "base/NDomains.h"
#include "nheliostat/NHelioApplication.h"
#include "offline/NDOPPluginActivator.h"
#include "proxy/NCloudDocsRecordManager.h"
#include "proxy/NConfigCentreValues.h"
#include "proxy/NDOPConfig.h"
#include "proxy/NPackagePaths.h"
#include "proxy/NPackageRecords.h"
#include "proxy/NProxyDecisionReport.h"
#include "zeolite/NCoreApplication.h"

#include <QFileInfo>

using NDocsOfflinePage::NDOPConfig;

namespace {

NPluginManager* pluginManager()
{
    NCoreApplication* core = NCoreApplication::instance();
    return core ? core->getPluginManager() : nullptr;
}

} // namespace

void NCloudDocsPageProxyManager::setProxy(const NDOPProxyInfo& info)
{
    constexpr auto operation = "NCloudDocsPageProxyManager::setProxy";
    m_requested = info;
    if (!isBrowserReady()) {
        ndocslog::info(QStringLiteral("webview not ready"), operation);
        return;
    }
    if (isCurrentLoad(info))
        return;
    const NDOPProxyInfo before = m_current;
    removeProxies();
    ndocslog::info(QStringLiteral("initDocsLocalResource start URL:%1").arg(info.notifyUrl), operation);
    report("set_start");
    if (!NDOPConfig::instance().isDopEnabled(info.officeType)) {
        ndocslog::info(QStringLiteral("isInjectHanlderInfoChanged officeType: %1, connectionId: %2")
                           .arg(info.officeType, info.connId),
                       operation);
        report("set_switch_checking", QStringLiteral("switch_off"));
        return;
    }
    if (info.fileId.isEmpty()) {
        ndocslog::info(QStringLiteral("file id is empty"), operation);
        return;
    }
    if (!checkUrl(info.notifyUrl))
        return;
    ndocslog::info(
        QStringLiteral("current injectId %1; current connid %2").arg(before.injectId, before.connId),
        operation);
    ndocslog::info(QStringLiteral("new injectId %1; new connid %2").arg(info.injectId, info.connId),
                   operation);
    m_current = info;
    addRequestProxies();
    if (!setProxyUsingRecord()) {
        QString path;
        if (loadPackagePlugin(path))
            setProxyUsingLocalPlugin(path);
    }
    report("set_finish");
}

/** Serves the version that the file was opened with last. */
bool NCloudDocsPageProxyManager::setProxyUsingRecord()
{
    const NCloudDocsRecordManager* records = NCloudDocsRecordManager::instance();
    const EnvConfigRecord record =
        records ? records->retrieveEnvConfigRecord(m_current.fileId) : EnvConfigRecord();
    if (!record.isUsable())
        return false;
    return setProxyUsingLocalPlugin(records->retrievePluginPathRecord(m_current.officeType, record.frontVer));
}

bool NCloudDocsPageProxyManager::updateProxy(const NDOPProxyInfo& info)
{
    constexpr auto operation = "NCloudDocsPageProxyManager::updateProxy";
    m_requested = info;
    if (!isBrowserReady()) {
        ndocslog::info(QStringLiteral("webview not ready"), operation);
        return false;
    }
    if (info.fileId.isEmpty()) {
        ndocslog::info(QStringLiteral("file id is empty"), operation);
        return false;
    }
    if (info.frontVer.isEmpty()) {
        ndocslog::info(QStringLiteral("front ver is empty"), operation);
        return false;
    }
    const bool isOtherLoad = !isCurrentLoad(info);
    if (isOtherLoad)
        removeProxies();
    report("update_start", QStringLiteral("no_error"), info.frontVer);
    if (!NDOPConfig::instance().isDopEnabled(info.officeType)) {
        ndocslog::info(QStringLiteral("funcSwitch off"), operation);
        report("update_switch_checking", QStringLiteral("switch_off"), info.frontVer);
        return false;
    }
    if (!checkUrl(info.notifyUrl))
        return false;
    if (m_current.frontVer == info.frontVer && !isOtherLoad) {
        ndocslog::info(QStringLiteral("proxy frontVer not changed, no need to reset proxy."), operation);
        return true;
    }
    ndocslog::info(QStringLiteral("proxy url %1").arg(info.notifyUrl), operation);
    ndocslog::info(QStringLiteral("injectId %1; connid %2").arg(info.injectId, info.connId), operation);
    const NCloudDocsRecordManager* records = NCloudDocsRecordManager::instance();
    QString path = records ? records->retrievePluginPathRecord(info.officeType, info.frontVer) : QString();
    if (path.isEmpty() || !QFileInfo::exists(path)) {
        ndocslog::info(QStringLiteral("no plugins path record for font ver %1").arg(info.frontVer),
                       operation);
        path = npackagepaths::upgradedOrInstalled(info.pluginName);
        if (npackagepaths::readPluginVersion(path) != info.frontVer) {
            report("update_frontver_comparing", QStringLiteral("no plugin available"), info.frontVer);
            return false;
        }
    }
    if (!isOtherLoad) {
        removeHtmlProxy();
        removeLocalResourceProxy();
    }
    m_current = info;
    m_current.pluginPath = path;
    // The version may be known before anything was installed for this load; else they are left as they are.
    if (isOtherLoad)
        addRequestProxies();
    ndocslog::info(QStringLiteral("using plugin %1 as proxy").arg(path), operation);
    ndocslog::info(QStringLiteral("using font ver %1 as proxy").arg(info.frontVer), operation);
    addHtmlProxy();
    addLocalResourceProxy();
    ndocslog::info(QStringLiteral("reset proxy success"), operation);
    report("update_finish", QStringLiteral("no_error"), info.frontVer);
    return true;
}

bool NCloudDocsPageProxyManager::isCurrentLoad(const NDOPProxyInfo& info) const
{
    return m_current.injectId == info.injectId && m_current.connId == info.connId &&
           m_current.officeType == info.officeType;
}

bool NCloudDocsPageProxyManager::isBrowserReady() const
{
    return m_browser && m_browser->webViewContainer();
}

bool NCloudDocsPageProxyManager::checkUrl(const QString& notifyUrl)
{
    constexpr auto operation = "NCloudDocsPageProxyManager::checkUrl";
    constexpr auto step = "url_checking";
    if (notifyUrl.isEmpty()) {
        ndocslog::info(QStringLiteral("notify url is empty"), operation);
        report(step, QStringLiteral("notify_url_empty"));
        return false;
    }
    const QString origin = ndomains::origin(QStringLiteral("quill"));
    if (origin.isEmpty()) {
        ndocslog::info(QStringLiteral("quill domain is empty"), operation);
        report(step, QStringLiteral("quill_domain_empty"));
        return false;
    }
    const NDOPConfig& config = NDOPConfig::instance();
    if (QUrl(notifyUrl).host(QUrl::FullyDecoded) != QUrl(origin).host(QUrl::FullyDecoded)) {
        const QString mismatch =
            QStringLiteral("host_not_match_%1_%2, need add proxy").arg(notifyUrl, origin);
        ndocslog::info(mismatch, operation);
        report(step, mismatch);
        if (!config.forceProxy())
            return false;
    }
    if (!config.isHybridUrl(QUrl(notifyUrl))) {
        ndocslog::info(QStringLiteral("key(hybrid) not exist or fileType noSupport"), operation);
        report(step, QStringLiteral("url_param_not_match"));
        return false;
    }
    report(step);
    return true;
}

bool NCloudDocsPageProxyManager::isFrontVerUsable(const QString& frontVer)
{
    return nconfigvalues::isVersionCheckOn() ? checkFrontVerUsableVcs(frontVer)
                                             : checkFrontVerUsableByPck(frontVer);
}

bool NCloudDocsPageProxyManager::checkFrontVerUsableByPck(const QString& frontVer)
{
    constexpr auto operation = "NCloudDocsPageProxyManager::checkFrontVerUsableByPck";
    constexpr auto step = "frontver_checked_by_pck";
    if (frontVer.isEmpty())
        return false;
    const qint64 expireTime = npackagerecords::expireTime(m_current.officeType, frontVer);
    if (expireTime != 0 && expireTime < nclock::nowSeconds()) {
        report(step, QStringLiteral("local_pck_req_expire"));
        ndocslog::info(QStringLiteral("local resource expired"), operation);
        return false;
    }
    if (npackagerecords::mustUpgrade(m_current.officeType, frontVer)) {
        report(step, QStringLiteral("local_pck_must_upgrade"));
        ndocslog::info(QStringLiteral("local resource must ungrade"), operation);
        return false;
    }
    report(step);
    return true;
}

bool NCloudDocsPageProxyManager::checkFrontVerUsableVcs(const QString& frontVer)
{
    constexpr auto operation = "NCloudDocsPageProxyManager::checkFrontVerUsableVcs";
    constexpr auto step = "frontver_checked_by_vcs";
    if (frontVer.isEmpty())
        return false;
    ndocslog::info(QStringLiteral("check front ver by vcs record %1").arg(frontVer), operation);
    const QString serverVersion = npackagerecords::checkedVersion(m_current.officeType, frontVer);
    if (serverVersion.isEmpty()) {
        ndocslog::info(
            QStringLiteral("the server version for client version %1 does not exist").arg(frontVer),
            operation);
        return true;
    }
    if (serverVersion == frontVer) {
        report(step);
        return true;
    }
    report(step, QStringLiteral("local_vcs_must_upgrade"));
    ndocslog::info(QStringLiteral("local resource must ungrade"), operation);
    return false;
}

bool NCloudDocsPageProxyManager::setProxyUsingLocalPlugin(const QString& path)
{
    constexpr auto operation = "NCloudDocsPageProxyManager::setProxyUsingLocalPlugin";
    constexpr auto step = "local_plugin_setting";
    if (path.isEmpty() || !QFileInfo::exists(path)) {
        ndocslog::info(
            QStringLiteral("initDocsLocalResource _getDOPPluginPath isEmpty or not exists path:%1").arg(path),
            operation);
        report(step, QStringLiteral("plugin_error"));
        NDOPPluginActivator& activator = NDOPPluginActivator::instance();
        activator.setScene(QStringLiteral("skyleaf"));
        activator.requestPluginActivation(m_current.officeType);
        return false;
    }
    const QString frontVer = npackagepaths::readPluginVersion(path);
    if (frontVer.isEmpty()) {
        ndocslog::info(QStringLiteral("initDocsLocalResource front ver is empty)"), operation);
        report(step, QStringLiteral("local_pck_data_error"));
        return false;
    }
    if (NCloudDocsRecordManager* records = NCloudDocsRecordManager::instance())
        records->updatePluginPathRecord(m_current.officeType, frontVer, path);
    if (!isFrontVerUsable(frontVer)) {
        ndocslog::info(QStringLiteral("local resource is disabled"), operation);
        return false;
    }
    m_current.pluginPath = path;
    m_current.frontVer = frontVer;
    ndocslog::info(QStringLiteral("using font ver %1 as proxy").arg(frontVer), operation);
    addHtmlProxy();
    addLocalResourceProxy();
    ndocslog::info(QStringLiteral("initDocsLocalResource success"), operation);
    report(step);
    return true;
}

bool NCloudDocsPageProxyManager::loadPackagePlugin(QString& path)
{
    NPluginManager* plugins = NHelioApplication::instance() ? pluginManager() : nullptr;
    path.clear();
    if (plugins) {
        m_plugin = plugins->getPlugin(m_current.pluginName);
        if (m_plugin) {
            connect(m_plugin.get(), &NPlugin::loadSuccess, this,
                    &NCloudDocsPageProxyManager::slog_pluginLoaded, Qt::UniqueConnection);
            if (m_plugin->load() == NPlugin::Loaded)
                path = m_plugin->localPath();
        }
        // Where it ought to lie, so that a package that went missing is fetched again.
        if (path.isEmpty())
            path = plugins->getPluginPath(m_current.pluginName, false);
    }
    if (!path.isEmpty())
        return true;
    report("load_plugin", QStringLiteral("direct_plugin_load_error"));
    return false;
}

/** A package that comes while a page is shown is known to the next load; the present one goes on as it is. */
void NCloudDocsPageProxyManager::slog_pluginLoaded()
{
    NCloudDocsRecordManager* records = NCloudDocsRecordManager::instance();
    if (!m_plugin || !records)
        return;
    QString path = m_plugin->localPath();
    NPluginManager* plugins = pluginManager();
    if (path.isEmpty() && plugins)
        path = plugins->getPluginPath(m_current.pluginName);
    const QString version = npackagepaths::readPluginVersion(path);
    if (version.isEmpty())
        return;
    records->updatePluginPathRecord(m_current.officeType, version, path);
}

void NCloudDocsPageProxyManager::report(const char* step, const QString& error,
                                        const std::optional<QString>& resetFrontVer) const
{
    NProxyDecisionStep decision;
    decision.stepName = QLatin1String(step);
    decision.errorMessage = error;
    decision.resetFrontVer = resetFrontVer;
    decision.traceId = m_requested.traceId;
    decision.pluginState =
        m_plugin ? NPlugin::convertState(m_plugin->state()) : QStringLiteral("plugin not exist");
    decision.frontVer = m_current.frontVer;
    decision.pluginName = m_requested.pluginName;
    decision.officeType = m_requested.officeType;
    decision.notifyUrl = m_requested.notifyUrl;
    decision.pluginVersion = m_plugin ? m_plugin->getProp(QStringLiteral("version")).toString() : QString();
    reportProxyDecision(decision);
}
