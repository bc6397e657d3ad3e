#include "nheliostat/documents/LocalDocumentFetch.h"

#include "nheliostat/documents/DocumentExport.h"
#include "nheliostat/documents/DownloadState.h"
#include "nrt/files.h"
#include "nrt/networkAccess.h"
#include "zeolite/NxLoggerLite.h"

#include <QDir>
#include <QFileInfo>
#include <QNetworkReply>

#include <utility>

namespace {

constexpr int pollIntervalMs = 200;
constexpr int toleratedFailedPolls = 10; // the service goes on with its transfers when it was started again
constexpr int exportTimeoutMs = 30'000;
constexpr qint64 largestExport = 64LL * 1024 * 1024;

} // namespace

LocalDocumentFetch::LocalDocumentFetch(LocalDocumentSource source, LocalDocumentRequest request,
                                       QString directory, QObject* parent)
    : QObject(parent)
    , m_source(std::move(source))
    , m_request(std::move(request))
    , m_directory(std::move(directory))
{
    m_pollTimer.setSingleShot(true);
    m_pollTimer.setInterval(pollIntervalMs);
    connect(&m_pollTimer, &QTimer::timeout, this, &LocalDocumentFetch::pollDownload);
}

LocalDocumentFetch::~LocalDocumentFetch()
{
    if (m_isDownloading && m_source.service)
        m_source.service->invokeCloudFunction(QStringLiteral("cancelTransfers"),
                                              Q_ARG(QStringList, QStringList(m_taskIds)), nullptr, "");
}

void LocalDocumentFetch::start()
{
    // Versions and deployments without documents are the drive's affair.
    if (!m_source.apiUrl.isEmpty() && m_request.historyId.isEmpty())
        askForExport();
    else
        QMetaObject::invokeMethod(this, &LocalDocumentFetch::download, Qt::QueuedConnection);
}

void LocalDocumentFetch::askForExport()
{
    NHelioUserInfo user;
    if (m_source.service)
        m_source.service->currentUserInfo(user);
    QNetworkRequest request{QUrl(DocumentExport::url(m_source.apiUrl, m_request.fileId))};
    request.setTransferTimeout(exportTimeoutMs);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    if (!user.cookies.isEmpty())
        request.setRawHeader("Cookie", user.cookies.toUtf8());
    auto* network = new nrt::NNetworkAccessManager(this);
    m_export = network->get(request);
    connect(m_export, &QNetworkReply::finished, this, &LocalDocumentFetch::onExportAnswered);
    connect(m_export, &QNetworkReply::downloadProgress, this, [this](qint64 received, qint64) {
        if (received > largestExport)
            m_export->abort();
    });
}

void LocalDocumentFetch::onExportAnswered()
{
    QNetworkReply* reply = m_export;
    reply->deleteLater();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    constexpr int badRequest = 400;
    constexpr int notFound = 404;
    if (status == badRequest || status == notFound)
        return download();
    if (reply->error() != QNetworkReply::NoError)
        return fail(tr("The documents service did not answer: %1").arg(reply->errorString()));
    storeExport(reply->readAll());
}

void LocalDocumentFetch::storeExport(const QByteArray& body)
{
    const std::optional<DocumentExport> document = DocumentExport::fromReply(body);
    if (!document)
        return fail(tr("The document has no content that can be shown here."));
    const QString path = QDir(m_directory).filePath(document->name + QStringLiteral(".html"));
    const QString reason = nrt::files::replace(path, document->html);
    if (!reason.isEmpty())
        return fail(tr("The document cannot be kept: %1").arg(reason));
    Q_EMIT fetched(path, document->name);
}

void LocalDocumentFetch::download()
{
    const QString requestId =
        m_source.service
            ? m_source.service->downloadCloudFiles({m_request.fileId}, m_directory, m_request.historyId, this,
                                                   "onDownloadAccepted")
            : QString();
    if (requestId.isEmpty())
        fail(tr("There is no cloud service to download the file with."));
}

void LocalDocumentFetch::onDownloadAccepted(bool success, const QString&,
                                            const DownloadCloudFilesResult& result)
{
    if (!success || result.taskIds.isEmpty())
        return fail(tr("The cloud service did not take the download."));
    QStringList ids;
    for (const QByteArray& id : result.taskIds)
        ids.append(QString::fromUtf8(id));
    m_taskIds = ids.join(u'|');
    m_isDownloading = true;
    pollDownload();
}

void LocalDocumentFetch::pollDownload()
{
    if (m_source.service)
        m_source.service->invokeCloudFunction(QStringLiteral("getBatchDownloadCloudFilesState"),
                                              Q_ARG(QStringList, QStringList(m_taskIds)), this,
                                              "onDownloadState");
}

void LocalDocumentFetch::onDownloadState(bool success, const QString&, const NRpcResponse& reply)
{
    if (!success) {
        if (++m_failedPolls > toleratedFailedPolls)
            return fail(tr("The cloud service does not answer."));
        return m_pollTimer.start();
    }
    m_failedPolls = 0;
    const DownloadState state = DownloadState::fromReport(reply.values.value(QStringLiteral("jsonConten")));
    switch (state.stage) {
    case DownloadState::Stage::Running:
        Q_EMIT progressed(state.percent);
        return m_pollTimer.start();
    case DownloadState::Stage::Failed:
        m_isDownloading = false;
        return fail(state.message.isEmpty() ? tr("The file could not be downloaded.")
                                            : tr("The file could not be downloaded: %1").arg(state.message));
    case DownloadState::Stage::Finished:
        break;
    }
    m_isDownloading = false;
    if (!QFileInfo(state.path).isFile())
        return fail(tr("The downloaded file is gone."));
    Q_EMIT fetched(state.path, {});
}

void LocalDocumentFetch::fail(const QString& why)
{
    NxLoggerLite::writeWarning(QStringLiteral("nheliostat"),
                               QStringLiteral("file %1 cannot be opened: %2").arg(m_request.fileId, why));
    // Later: nobody expects the end while it still starts.
    QMetaObject::invokeMethod(
        this, [this, why] { Q_EMIT failed(why); }, Qt::QueuedConnection);
}
