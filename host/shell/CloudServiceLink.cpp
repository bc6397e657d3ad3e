#include "shell/CloudServiceLink.h"

#include "nheliostat/framework/ShellCloudSvrProxy.h"
#include "vltcloudsvr/common/InstalledPlugins.h"
#include "vltcloudsvr/common/ServicePlace.h"
#include "zeolite/NxLoggerLite.h"
#include "zeolite/ZeoliteHost.h"

#include <QPointer>
#include <QProcess>

#include <utility>

namespace shell {

using namespace vlt::cloudsvr;

namespace {

/** The newer of the versions that the deployed directories hold; empty when they hold none. */
QString deployedVersion(const zeolite::PluginDirectories& plugin)
{
    const QString installed = versionIn(plugin.path);
    const QString upgrade = versionIn(plugin.upgradePath);
    return isOlderVersion(installed, upgrade) ? upgrade : installed;
}

} // namespace

CloudServiceLink::CloudServiceLink(ShellCloudSvrProxy& proxy, ZeoliteHost& services, const QString& dataDir,
                                   StartDiagnosis startDiagnosis, QObject* parent)
    : QObject(parent)
    , m_services(services)
{
    const QPointer<ShellCloudSvrProxy> service = &proxy;
    CloudServiceHooks hooks;
    hooks.checkRunning = [service] { return service && service->isServiceRunning(); };
    hooks.start = [service](const QString& commandLine, bool wait) {
        return service && service->startService(QProcess::splitCommand(commandLine), wait);
    };
    hooks.startDiagnosis = std::move(startDiagnosis);
    m_services.setCloudServiceHooks(std::move(hooks));
    connect(&proxy, &ShellCloudSvrProxy::serviceEvent, this, &CloudServiceLink::onServiceEvent);

    const QMap<QString, zeolite::PluginDirectories>& deployed = m_services.setup().plugins;
    for (auto plugin = deployed.begin(); plugin != deployed.end(); ++plugin)
        m_versions.insert(plugin.key(), deployedVersion(*plugin));
    const QMap<QString, InstalledVersion> downloaded = newestInstalled(placeOf(dataDir).pluginsDir());
    for (auto plugin = downloaded.begin(); plugin != downloaded.end(); ++plugin)
        useVersion(plugin.key(), plugin->version, plugin->directory);
}

CloudServiceLink::~CloudServiceLink()
{
    m_services.setCloudServiceHooks({});
}

void CloudServiceLink::onServiceEvent(const QString& name, const QMap<QString, QString>& values)
{
    if (name == names::pluginInstalled)
        useVersion(values.value(QStringLiteral("pluginName")), values.value(QStringLiteral("version")),
                   values.value(QStringLiteral("path")));
}

void CloudServiceLink::useVersion(const QString& plugin, const QString& version, const QString& directory)
{
    if (isOlderVersion(version, m_versions.value(plugin)))
        return;
    m_versions.insert(plugin, version);
    m_services.plugins().setUpgradePath(plugin, directory);
    m_services.plugins().getPluginUpgradeManager()->getPlugin(plugin)->load();
    NxLoggerLite::writeInfo(QStringLiteral("shell"),
                            QStringLiteral("plug-in %1: version %2 is in use").arg(plugin, version));
}

} // namespace shell
