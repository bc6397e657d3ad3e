#include "vltcloudsvr/plugins/PluginDownload.h"

#include "vltcloudsvr/plugins/PackageInstaller.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRandomGenerator>

#include <utility>

namespace vlt::cloudsvr {
namespace {

constexpr int statusOk = 200;
constexpr int statusServerErrors = 500;
constexpr qint64 longestDescription = 64 * 1024;
constexpr qint64 chunk = 256 * 1024;

int statusOf(const QNetworkReply& reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

QString errorOf(const QNetworkReply& reply)
{
    const int status = statusOf(reply);
    return status == 0 ? reply.errorString()
                       : QStringLiteral("the documents service answered %1").arg(status);
}

} // namespace

PluginDownload::PluginDownload(QString name, const QString& apiUrl, const DownloadSetup& setup,
                               QNetworkAccessManager& network, QObject* parent)
    : QObject(parent)
    , m_name(std::move(name))
    , m_url(packageUrl(apiUrl, m_name))
    , m_setup(setup)
    , m_network(network)
{
    m_timer.setSingleShot(true);
    m_worker.setMaxThreadCount(1);
    connect(&m_timer, &QTimer::timeout, this, &PluginDownload::describe);
}

PluginDownload::~PluginDownload()
{
    m_isCancelled = true;
    dropReply();
    m_worker.waitForDone();
    dropFile();
}

void PluginDownload::start()
{
    m_timer.start(m_setup.spreadMs > 0 ? QRandomGenerator::global()->bounded(m_setup.spreadMs) : 0);
}

QNetworkReply* PluginDownload::get(const QUrl& url)
{
    QNetworkRequest request(url);
    request.setTransferTimeout(m_setup.transferTimeoutMs);
    m_reply = m_network.get(request);
    return m_reply;
}

void PluginDownload::dropReply()
{
    if (QNetworkReply* reply = std::exchange(m_reply, nullptr)) {
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }
}

void PluginDownload::dropFile()
{
    m_file.close();
    if (m_file.exists())
        m_file.remove();
}

void PluginDownload::describe()
{
    ++m_attempts;
    if (m_url.isEmpty()) {
        fail(QStringLiteral("there is no documents service to ask"), Retry::No);
        return;
    }
    connect(get(m_url), &QNetworkReply::finished, this, &PluginDownload::onDescribed);
}

void PluginDownload::onDescribed()
{
    const int status = statusOf(*m_reply);
    if (m_reply->error() != QNetworkReply::NoError || status != statusOk) {
        fail(errorOf(*m_reply), status == 0 || status >= statusServerErrors ? Retry::Yes : Retry::No);
        return;
    }
    const Result<PackageDescription> package =
        parsePackageDescription(m_reply->read(longestDescription), m_name, m_url);
    if (!package) {
        fail(package.error().text, Retry::No);
        return;
    }
    dropReply();
    m_package = *package;
    for (const InstalledVersion& installed : installedVersions(m_setup.pluginsDir, m_name)) {
        if (installed.version == m_package.version) {
            onInstalled(installed.directory, {});
            return;
        }
    }
    download();
}

void PluginDownload::download()
{
    m_hash.reset();
    m_file.setFileName(incomingFile(m_setup.pluginsDir, m_name));
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        fail(QStringLiteral("cannot write %1").arg(m_file.fileName()), Retry::No);
        return;
    }
    QNetworkReply* reply = get(m_package.url);
    connect(reply, &QNetworkReply::readyRead, this, &PluginDownload::onBytes);
    connect(reply, &QNetworkReply::finished, this, &PluginDownload::onDownloaded);
}

void PluginDownload::onBytes()
{
    if (statusOf(*m_reply) != statusOk)
        return; // the answer's own error counts
    while (m_reply && m_reply->bytesAvailable() > 0) {
        const QByteArray bytes = m_reply->read(chunk);
        m_hash.addData(bytes);
        if (m_file.write(bytes) != bytes.size())
            fail(QStringLiteral("cannot write %1").arg(m_file.fileName()), Retry::No);
        else if (m_file.pos() > m_package.size)
            fail(QStringLiteral("the package is larger than it was said to be"), Retry::Yes);
    }
}

void PluginDownload::onDownloaded()
{
    onBytes();
    if (!m_reply)
        return;
    if (m_reply->error() != QNetworkReply::NoError || statusOf(*m_reply) != statusOk) {
        fail(errorOf(*m_reply), Retry::Yes);
        return;
    }
    dropReply();
    const bool isWritten = m_file.flush();
    const qint64 size = m_file.size();
    m_file.close();
    if (!isWritten || size != m_package.size)
        fail(QStringLiteral("the package is not as large as it was said to be"), Retry::Yes);
    else if (m_hash.result() != m_package.sha256)
        fail(QStringLiteral("the package's hash is wrong"), Retry::Yes);
    else
        install();
}

void PluginDownload::install()
{
    const auto work = [this, zip = m_file.fileName()] {
        const Result<QString> directory =
            installPackage(zip, m_setup.pluginsDir, m_name, m_package.version, m_isCancelled);
        if (directory)
            pruneVersions(m_setup.pluginsDir, m_name, m_package.version, QDateTime::currentDateTime());
        const QString error = directory ? QString() : directory.error().text;
        QMetaObject::invokeMethod(
            this, [this, path = directory ? *directory : QString(), error] { onInstalled(path, error); },
            Qt::QueuedConnection);
    };
    m_worker.start(work);
}

void PluginDownload::onInstalled(const QString& directory, const QString& error)
{
    if (!error.isEmpty()) {
        fail(error, Retry::No);
        return;
    }
    dropFile();
    Q_EMIT finished(m_name, m_package.version, directory, {});
}

void PluginDownload::fail(const QString& error, Retry retry)
{
    dropReply();
    dropFile();
    if (retry == Retry::No || m_attempts > m_setup.retries) {
        Q_EMIT finished(m_name, {}, {}, error);
        return;
    }
    constexpr int factor = 4;
    m_timer.start(m_attempts == 1 ? m_setup.retryMs : m_setup.retryMs * factor);
}

} // namespace vlt::cloudsvr
