#pragma once

#include <QMap>
#include <QObject>
#include <QString>

#include <functional>

class ShellCloudSvrProxy;
class ZeoliteHost;

namespace shell {

/**
 * Ties the cloud service process to the shared services: they start it and ask for it, and the plug-ins that
 * it downloads become upgrades, those that were downloaded earlier at once. User-interface thread.
 */
class CloudServiceLink final : public QObject
{
    Q_OBJECT
public:
    /** See NCloudSvrProxy::startDiagnosis. */
    using StartDiagnosis =
        std::function<bool(int kind, const QString& applicationId, int& resultCode, const QString& title)>;

    /** `dataDir` is the service's. `services` outlives this, `proxy` may go earlier. */
    CloudServiceLink(ShellCloudSvrProxy& proxy, ZeoliteHost& services, const QString& dataDir,
                     StartDiagnosis startDiagnosis = {}, QObject* parent = nullptr);
    ~CloudServiceLink() override;

private:
    void onServiceEvent(const QString& name, const QMap<QString, QString>& values);
    /** Takes the version unless a newer one is in use. */
    void useVersion(const QString& plugin, const QString& version, const QString& directory);

    ZeoliteHost& m_services;
    QMap<QString, QString> m_versions; //!< in use, by the plug-in's name
};

} // namespace shell
