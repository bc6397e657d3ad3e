#include "vltcloudsvr/plugins/PluginDownloads.h"

#include "nrt/NrtHost.h"
#include "vltcloudsvr/plugins/PackageInstaller.h"
#include "zeolite/NxLoggerLite.h"

#include <QFileInfo>

#include <utility>

namespace vlt::cloudsvr {
namespace {

const QString logTag = QStringLiteral("vltcloudsvr");

} // namespace

PluginDownloads::PluginDownloads(DownloadSetup setup, QObject* parent)
    : QObject(parent)
    , m_setup(std::move(setup))
{
    clearLeftovers(m_setup.pluginsDir);
}

PluginDownloads::~PluginDownloads()
{
    qDeleteAll(std::exchange(m_running, {}));
}

void PluginDownloads::request(const Caller& caller, const QString& name)
{
    if (m_running.contains(name))
        return;
    // Where native requests connect is a setting of the process; shells that share a data directory share
    // their deployment too.
    nrt::host::Setup runtime;
    runtime.dataDir = QFileInfo(m_setup.pluginsDir).path();
    for (auto entry = caller.resolve.begin(); entry != caller.resolve.end(); ++entry)
        runtime.productConfig.insert(QStringLiteral("resolve/") + entry.key(), *entry);
    nrt::host::configure(runtime);

    NxLoggerLite::writeInfo(logTag, QStringLiteral("plug-in %1: download asked for").arg(name));
    auto* download = new PluginDownload(name, caller.apiUrl, m_setup, m_network, this);
    m_running.insert(name, download);
    connect(download, &PluginDownload::finished, this, &PluginDownloads::onFinished);
    download->start();
}

void PluginDownloads::onFinished(const QString& name, const QString& version, const QString& directory,
                                 const QString& error)
{
    m_running.take(name)->deleteLater();
    if (error.isEmpty()) {
        NxLoggerLite::writeInfo(logTag,
                                QStringLiteral("plug-in %1: version %2 installed").arg(name, version));
        Q_EMIT installed(name, version, directory);
    } else {
        NxLoggerLite::writeWarning(logTag, QStringLiteral("plug-in %1: not downloaded: %2").arg(name, error));
    }
    if (m_running.isEmpty())
        Q_EMIT idle();
}

} // namespace vlt::cloudsvr
