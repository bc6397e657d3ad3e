#pragma once

#include "vltcloudsvr/plugins/PackageDescription.h"

#include <QCryptographicHash>
#include <QFile>
#include <QObject>
#include <QThreadPool>
#include <QTimer>

#include <atomic>
#include <memory>

class QNetworkAccessManager;
class QNetworkReply;

namespace vlt::cloudsvr {

struct DownloadSetup
{
    QString pluginsDir;
    int spreadMs = 3000; //!< a download begins up to this much after it was asked for, at random
    int retryMs = 1000;  //!< before the first retry; four times as long before the second
    int retries = 2;
    int transferTimeoutMs = 30'000; //!< without any progress
};

/**
 * Brings one plug-in up to date: asks for its package's description, downloads, verifies and installs. Fails
 * quietly after its retries. Reports once, by `finished`; destroying it ends it at any time and leaves
 * nothing half installed.
 */
class PluginDownload final : public QObject
{
    Q_OBJECT
public:
    PluginDownload(QString name, const QString& apiUrl, const DownloadSetup& setup,
                   QNetworkAccessManager& network, QObject* parent);
    ~PluginDownload() override;

    void start();

Q_SIGNALS:
    /** `error` is empty when the version lies in the directory now, downloaded or there already. */
    void finished(const QString& name, const QString& version, const QString& directory,
                  const QString& error);

private:
    enum class Retry { Yes, No };

    void describe();
    void onDescribed();
    void download();
    void onBytes();
    void onDownloaded();
    void install();
    void onInstalled(const QString& directory, const QString& error);
    void fail(const QString& error, Retry retry);
    void dropReply();
    void dropFile();
    QNetworkReply* get(const QUrl& url);

    const QString m_name;
    const QUrl m_url;
    const DownloadSetup m_setup;
    QNetworkAccessManager& m_network;
    QTimer m_timer; //!< until the next attempt
    int m_attempts = 0;
    PackageDescription m_package;
    QNetworkReply* m_reply = nullptr;
    QFile m_file;
    QCryptographicHash m_hash{QCryptographicHash::Sha256};
    std::atomic<bool> m_isCancelled{false};
    QThreadPool m_worker;
};

} // namespace vlt::cloudsvr
