#include "bridge/CloudFileDialog.h"
#include "bridge/NHelioCloudDocsAsynJsObj.h"
#include "bridge/ShellAccess.h"
#include "bridge/TransferStates.h"

#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioPage.h"
#include "zeolite/NxWebViewJSContext.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QPointer>

// The script methods that move files between this machine and the drive.

namespace {

constexpr int pollIntervalMs = 1000;
constexpr int idlePollsToEnd = 5;
constexpr auto uploadSlot = "onBatchUploadFileListToAnyExistedPath";

/** One watch of all pages' uploads. */
UploadWatch& uploadWatch()
{
    static UploadWatch watch;
    return watch;
}

void startPolling(QTimer& timer)
{
    if (!timer.isActive())
        timer.start(pollIntervalMs);
}

QString joined(const QSet<QString>& texts)
{
    return QStringList(texts.begin(), texts.end()).join(QLatin1Char('|'));
}

/** The files and folders among the entries of a download. */
struct DownloadIds
{
    explicit DownloadIds(const QVariantList& entries)
    {
        for (const QVariant& entry : entries) {
            const QVariantMap members = entry.toMap();
            if (members.size() < 2)
                continue;
            const QString id = members.value(QStringLiteral("id")).toString();
            (members.value(QStringLiteral("idDir")).toBool() ? folders : files) << id;
        }
    }

    QStringList files;
    QStringList folders;
};

} // namespace

void NHelioCloudDocsAsynJsObj::fileUploadListener(NxWebViewJSContext& context)
{
    m_uploadCallback = context.getCallback(QStringLiteral("callback"));
}

void NHelioCloudDocsAsynJsObj::fileDownloadListener(NxWebViewJSContext& context)
{
    m_downloadCallback = context.getCallback(QStringLiteral("callback"));
}

/** The function takes all names in one text. */
void NHelioCloudDocsAsynJsObj::queryStates(const QString& function, const QSet<QString>& names,
                                           const char* slot)
{
    const QStringList argument{joined(names)};
    if (NHelioCloudSvrProxy* proxy = shellaccess::cloudService()) {
        m_transferRequests.insert(
            proxy->invokeCloudFunction(function, Q_ARG(QStringList, argument), this, slot), document());
    }
}

bool NHelioCloudDocsAsynJsObj::isOfPresentDocument(const QString& requestId)
{
    const auto request = m_transferRequests.constFind(requestId);
    if (request == m_transferRequests.constEnd())
        return true;
    const quint64 asker = *request;
    m_transferRequests.erase(request);
    return isAnswerable(asker, QStringLiteral("states of transfers"));
}

void NHelioCloudDocsAsynJsObj::showFileUploadProgress(NxWebViewJSContext&)
{
    if (NHelioCloudSvrProxy* proxy = shellaccess::cloudService())
        proxy->showFileUploadProgress(nullptr);
}

void NHelioCloudDocsAsynJsObj::showFileDownloadProgress(NxWebViewJSContext&)
{
    if (NHelioCloudSvrProxy* proxy = shellaccess::cloudService())
        proxy->showFileDownloadProgress(nullptr);
}

void NHelioCloudDocsAsynJsObj::callFileUploader(NxWebViewJSContext& context)
{
    const QString zero = QStringLiteral("0");
    const bool isFolder = context.getValue(QStringLiteral("isDir"), zero).toBool();
    const QString groupId = context.getValue(QStringLiteral("groupid"), zero).toString();
    const QString parentId = context.getValue(QStringLiteral("parentid"), zero).toString();
    const QString fileId = context.getValue(QStringLiteral("fileid"), zero).toString();
    const QString fileName = context.getValue(QStringLiteral("filename"), QString()).toString();

    const QPointer<NHelioCloudDocsAsynJsObj> self = this; // the page may close while the dialog is open
    const QStringList chosen = isFolder ? cloudfiledialog::showUploadFolderDialog(m_lastDir, m_page)
                                        : cloudfiledialog::showUploadFileDialog(m_lastDir, m_page);
    if (!self || !isAnswerable(context.document(), context.method()))
        return;
    if (isFolder) {
        for (const QString& folder : chosen) {
            if (!folder.isEmpty())
                uploadFolder(groupId, parentId, folder);
        }
    } else {
        const bool isNewVersion = !fileId.isEmpty() && !fileName.isEmpty() && chosen.size() == 1;
        if (isNewVersion &&
            QFileInfo(chosen.first()).suffix().compare(QFileInfo(fileName).suffix(), Qt::CaseInsensitive) !=
                0) {
            context.reply()["result"] = "FileSuffixConflict";
            return;
        }
        uploadFileList(chosen, groupId, parentId, fileId);
    }
    startPolling(m_uploadStateTimer);
}

void NHelioCloudDocsAsynJsObj::uploadFileDrag(NxWebViewJSContext& context)
{
    const QString zero = QStringLiteral("0");
    const QString groupId = context.getValue(QStringLiteral("groupid"), zero).toString();
    const QString parentId = context.getValue(QStringLiteral("parentid"), zero).toString();
    const QVariantList dropped = context.getArray(QStringLiteral("files"));
    if (groupId.isEmpty() || parentId.isEmpty() || dropped.isEmpty())
        return;
    QStringList files;
    for (const QVariant& entry : dropped) {
        const QString path = entry.toString();
        if (QFileInfo(path).isDir())
            uploadFolder(groupId, parentId, path);
        else
            files << path;
    }
    uploadFileList(files, groupId, parentId, QString());
    startPolling(m_uploadStateTimer);
}

void NHelioCloudDocsAsynJsObj::uploadFolder(const QString& groupId, const QString& parentId,
                                            const QString& folder)
{
    if (NHelioCloudSvrProxy* proxy = shellaccess::cloudService())
        proxy->folderUpload(groupId, parentId, folder, this, uploadSlot, QString());
    m_lastDir = folder;
    collectFolderFiles(folder);
}

void NHelioCloudDocsAsynJsObj::uploadFileList(const QStringList& paths, const QString& groupId,
                                              const QString& parentId, const QString& fileId)
{
    if (paths.isEmpty())
        return;
    if (NHelioCloudSvrProxy* proxy = shellaccess::cloudService()) {
        proxy->batchUploadFileListToAnyExistedPath(groupId, parentId, paths, fileId, true, this, uploadSlot,
                                                   QString());
    }
    m_lastDir = QFileInfo(paths.last()).path();
    for (const QString& path : paths)
        m_uploadPaths.insert(path);
}

void NHelioCloudDocsAsynJsObj::collectFolderFiles(const QString& folder)
{
    QDirIterator entries(folder,
                         QDir::Dirs | QDir::Files | QDir::Drives | QDir::NoSymLinks | QDir::Hidden |
                             QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        entries.next();
        const QFileInfo entry = entries.fileInfo();
        if (!entry.isDir())
            m_uploadPaths.insert(entry.absoluteFilePath());
    }
}

void NHelioCloudDocsAsynJsObj::onBatchUploadFileListToAnyExistedPath(bool, const QString&, const stringMap&)
{
}

void NHelioCloudDocsAsynJsObj::onGetUploadStateTimerTimeout()
{
    queryStates(QStringLiteral("getBatchUploadFileListState"), m_uploadPaths,
                "onGetBatchUploadFileListState");
}

void NHelioCloudDocsAsynJsObj::onGetBatchUploadFileListState(bool, const QString& requestId,
                                                             const NRpcResponse& reply)
{
    if (!isOfPresentDocument(requestId))
        return;
    UploadWatch& watch = uploadWatch();
    const QString report = watch.takeIn(m_uploadPaths, reply.values);
    if (!watch.isAnyActive())
        endUploadWatch();
    callbackToJS(m_uploadCallback, report, false);
}

void NHelioCloudDocsAsynJsObj::endUploadWatch()
{
    UploadWatch& watch = uploadWatch();
    m_uploadStateTimer.stop();
    watch.forget(m_uploadPaths);
    m_uploadPaths.clear();
    if (!watch.isAnyActive())
        watch.forgetReported();
}

void NHelioCloudDocsAsynJsObj::callFileDownload(NxWebViewJSContext& context)
{
    const DownloadIds ids(context.getArray(QStringLiteral("fileids")));
    const QString groupId = context.getValue(QStringLiteral("groupid"), QString()).toString();
    const QString historyId = context.getValue(QStringLiteral("historyid"), QString()).toString();

    const QPointer<NHelioCloudDocsAsynJsObj> self = this; // the page may close while the dialog is open
    const QString directory = cloudfiledialog::showDownloadPathDialog(m_lastDir, m_page);
    if (!self || !isAnswerable(context.document(), context.method()))
        return;
    if (directory.isEmpty() || (ids.files.isEmpty() && ids.folders.isEmpty()))
        return;
    m_lastDir = directory;
    NHelioCloudSvrProxy* proxy = shellaccess::cloudService();
    if (!ids.folders.isEmpty()) {
        const QStringList started = watchFolderDownloads(ids.folders);
        if (proxy)
            proxy->downloadDir(groupId, started, directory, this, QString());
        startPolling(m_downloadStateTimer);
    }
    if (!ids.files.isEmpty() && proxy) {
        m_transferRequests.insert(proxy->downloadCloudFiles(ids.files, directory, historyId, this,
                                                            "onBatchDownloadCloudFilesToPath"),
                                  document());
    }
    shellaccess::reportOpenStart(QStringLiteral("clouddriver_download"), NHelioCollectInfoHelper::Unknown);
}

QStringList NHelioCloudDocsAsynJsObj::watchFolderDownloads(const QStringList& folderIds)
{
    QStringList started;
    for (const QString& id : folderIds) {
        if (m_downloadDirIds.contains(id))
            continue;
        m_downloadDirIds.insert(id);
        m_downloadTaskIds.insert(id);
        started << id;
    }
    return started;
}

void NHelioCloudDocsAsynJsObj::onBatchDownloadCloudFilesToPath(bool, const QString& requestId,
                                                               const DownloadCloudFilesResult& result)
{
    if (!isOfPresentDocument(requestId))
        return;
    for (const QByteArray& taskId : result.taskIds)
        m_downloadTaskIds.insert(QString::fromUtf8(taskId));
    startPolling(m_downloadStateTimer);
}

void NHelioCloudDocsAsynJsObj::onGetDownloadStateTimerTimeout()
{
    queryStates(QStringLiteral("getBatchDownloadCloudFilesState"), m_downloadTaskIds,
                "onGetBatchDownloadCloudFilesState");
}

void NHelioCloudDocsAsynJsObj::onGetBatchDownloadCloudFilesState(bool, const QString& requestId,
                                                                 const NRpcResponse& reply)
{
    if (!isOfPresentDocument(requestId))
        return;
    const DownloadState state = DownloadState::parse(reply.values.value(QStringLiteral("jsonConten")));
    if (state.isIdle && m_idleDownloadPolls >= idlePollsToEnd)
        endDownloadWatch();
    m_idleDownloadPolls = state.isIdle ? m_idleDownloadPolls + 1 : 0;
    if (state.hasPayload)
        callbackToJS(m_downloadCallback, state.payload, false);
    else
        endDownloadWatch();
}

void NHelioCloudDocsAsynJsObj::endDownloadWatch()
{
    m_idleDownloadPolls = 0;
    m_downloadStateTimer.stop();
    m_downloadTaskIds.clear();
    m_downloadDirIds.clear();
}
