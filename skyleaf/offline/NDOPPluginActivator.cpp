#include "offline/NDOPPluginActivator.h"

#include "base/NReadOnce.h"
#include "nheliostat/NHelioApplication.h"
#include "offline/TavaIpcCall.h"
#include "proxy/NDOPConfig.h"
#include "proxy/NOfficeTypes.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NDcInfoC.h"
#include "zeolite/NPlugin.h"

#include <memory>

using NDocsOfflinePage::NDOPConfig;

namespace {

NPluginPtr findPlugin(NPluginManager& plugins, const QString& name)
{
    NPluginUpgradeManager* upgrades = plugins.getPluginUpgradeManager();
    const NPluginPtr upgraded = upgrades ? upgrades->getPlugin(name) : nullptr;
    return upgraded ? upgraded : plugins.getPlugin(name);
}

} // namespace

NDOPPluginActivator& NDOPPluginActivator::instance()
{
    static NReadOnce<std::shared_ptr<NDOPPluginActivator>> activator(
        [] { return std::shared_ptr<NDOPPluginActivator>(new NDOPPluginActivator); });
    return *activator();
}

NDOPPluginActivator::NDOPPluginActivator()
{
    const QStringList officeTypes = nofficetypes::codes();
    for (const QString& officeType : officeTypes) {
        if (NDOPConfig::instance().isDopEnabled(officeType))
            m_activated.insert(officeType, false);
    }
}

void NDOPPluginActivator::requestPluginActivation(const QString& officeType)
{
    const auto entry = m_activated.find(officeType);
    if (entry == m_activated.end() || *entry)
        return;
    const QString pluginName = NDOPConfig::instance().pluginName(officeType);
    if (NHelioApplication* application = NHelioApplication::instance()) {
        // Not in the caller's stack: loading may raise anything.
        QMetaObject::invokeMethod(
            application, [pluginName] { instance().activatePlugin(pluginName); }, Qt::QueuedConnection);
    }
    if (m_asksAgain)
        return;
    *entry = true;
    m_hasMissing = m_activated.values().contains(false);
}

void NDOPPluginActivator::activatePlugin(const QString& pluginName)
{
    NCoreApplication* core = NCoreApplication::instance();
    NPluginManager* plugins = core ? core->getPluginManager() : nullptr;
    if (pluginName.isEmpty() || !plugins)
        return;
    const NPluginPtr plugin = findPlugin(*plugins, pluginName);
    if (!plugin) {
        report(pluginName, QStringLiteral("plugin is null"), nullptr);
        return;
    }
    report(pluginName, QStringLiteral("active"), plugin.get());
    // One watch a plug-in, however often it is asked for: a failed load asks for one download.
    QMetaObject::Connection& watch = m_failureWatches[pluginName];
    QObject::disconnect(watch);
    watch = QObject::connect(plugin.get(), &NPlugin::loadFailed, NHelioApplication::instance(),
                             [pluginName] { instance().requestDownload(pluginName); });
    plugin->load(0, 0);
}

void NDOPPluginActivator::requestDownload(const QString& pluginName) const
{
    const NHelioApplication* application = NHelioApplication::instance();
    NHelioCloudSvrProxy* cloud = application ? application->cloudSvrProxy() : nullptr;
    if (!cloud || pluginName.isEmpty())
        return;
    sendTavaIpcCall(*cloud, QStringLiteral("downloadDOPPluginOnRandomTime"),
                    {{QStringLiteral("pluginName"), pluginName}});
}

void NDOPPluginActivator::report(const QString& pluginName, const QString& error, const NPlugin* plugin) const
{
    NCoreApplication* core = NCoreApplication::instance();
    NDcInfoC* collection = core ? core->getDcInfo() : nullptr;
    if (pluginName.isEmpty() || !collection)
        return;
    const NDcFields fields{
        {QStringLiteral("pluginname"), pluginName},
        {QStringLiteral("errormsg"), error},
        {QStringLiteral("pluginstate"),
         plugin ? NPlugin::convertState(plugin->state()) : QStringLiteral("plugin not exist")},
        {QStringLiteral("scene"), m_scene},
        {QStringLiteral("reportver"), QStringLiteral("1.0")},
    };
    collection->postGeneralEvent(QStringLiteral("docs_localproxy_dop_active"), fields, 0, 0, 1, true);
}
