#pragma once

#include "vltcloudsvr/common/Calls.h"
#include "vltcloudsvr/plugins/PluginDownload.h"

#include "nrt/networkAccess.h"

namespace vlt::cloudsvr {

/** The downloads of plug-ins: one at a time for a plug-in, whoever asks. Used on the thread that made it. */
class PluginDownloads final : public QObject
{
    Q_OBJECT
public:
    explicit PluginDownloads(DownloadSetup setup, QObject* parent = nullptr);
    ~PluginDownloads() override;

    /** Joins a download of the plug-in that is under way. Goes where the caller's deployment says. */
    void request(const Caller& caller, const QString& name);
    bool isBusy() const { return !m_running.isEmpty(); }

Q_SIGNALS:
    void installed(const QString& name, const QString& version, const QString& directory);
    /** Nothing is under way any more. */
    void idle();

private:
    void onFinished(const QString& name, const QString& version, const QString& directory,
                    const QString& error);

    const DownloadSetup m_setup;
    nrt::NNetworkAccessManager m_network;
    QMap<QString, PluginDownload*> m_running; //!< by the plug-in's name
};

} // namespace vlt::cloudsvr
