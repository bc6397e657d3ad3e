#pragma once

#include "bridge/clipboard/ClipboardCalls.h"
#include "nheliostat/NHelioCloudSvrProxy.h"
#include "nheliostat/NHelioCommonJSAPI.h"

#include <QHash>
#include <QJsonObject>
#include <QMap>
#include <QNetworkAccessManager>
#include <QPointer>
#include <QSet>
#include <QTimer>

#include <memory>

class NDOPStorageFileHandler;
class NDOPStorageHandler;
class NDOPStorageInfoHandler;
class NDOPWebviewPreloadHandler;
class NHelioAppPage;
class NPrintFileHandler;
class NSorrelDockpanelJsHandler;
class NVltCloudWidgets;
struct OpenArguments;

/**
 * The bridge: the script object through which the documents web application of one page reaches the native
 * side.
 *
 * Message shape: every script method is a public slot with the call's context; "callstatus" is "ok" or
 * "error", the payload is in "result", a failure text in "errormsg", unless a method says otherwise. Thread:
 * the user-interface thread. Ownership: a child of the web view container; it ends with the container.
 */
class NHelioCloudDocsAsynJsObj : public NHelioCommonJSAPI
{
    Q_OBJECT
public:
    /** `browser` is not owned and may be null. */
    NHelioCloudDocsAsynJsObj(QObject* parent, NxWebViewContainer* container,
                             NHelioBrowserWidgetBase* browser);
    ~NHelioCloudDocsAsynJsObj() override;

    /** The page that the bridge belongs to; not owned, outlives it. */
    void setPage(NHelioAppPage* page);
    void setOfficeType(const QString& officeType);
    /** A reply that the page fetched in advance. Times are milliseconds since the epoch. */
    void forwardPreloadRequest(const QString& replyName, const QByteArray& data, qint64 startMs,
                               qint64 endMs);
    /** The login changed and the page has refreshed its cookies. */
    void notifyLoginStatus();
    /** The page was told how opening a cooperation ended; raises the page event "opencooperation". */
    void setOpenCooperationResult(bool ok);

    void initHandlers() override;

Q_SIGNALS:
    void sigReload();
    void sigShowOfflinePage();
    void sigGotoHomepage();
    void sigClose();
    void sigDataUpgradeFinished(const QString& data);
    void sigSendFile(const QVariantMap& arguments);

public Q_SLOTS:
    // Script methods.
    void getClipboardData(NxWebViewJSContext& context);
    void setClipboardData(NxWebViewJSContext& context);
    void tavaLogin(NxWebViewJSContext& context);
    void tavaLogout(NxWebViewJSContext& context);
    void tavaCheckLogined(NxWebViewJSContext& context);
    void tavaOpenVipUrl(NxWebViewJSContext& context);
    void clouddocsApiVersion(NxWebViewJSContext& context);
    void openFile(NxWebViewJSContext& context);
    void openFileEx(NxWebViewJSContext& context);
    void openFileByCloud(NxWebViewJSContext& context);
    void gotoH5Page(NxWebViewJSContext& context);
    void openProcessOnFile(NxWebViewJSContext& context);
    void getRoamingMode(NxWebViewJSContext& context);
    void setRoamingMode(NxWebViewJSContext& context);
    void showOfflinePage(NxWebViewJSContext& context);
    void writeClipboard(NxWebViewJSContext& context);
    void readClipboard(NxWebViewJSContext& context);
    void shareFile(NxWebViewJSContext& context);
    void checkNetwork(NxWebViewJSContext& context);
    void closeDialog(NxWebViewJSContext& context);
    void resize(NxWebViewJSContext& context);
    void gotoHomepage(NxWebViewJSContext& context);
    void loginStateChanged(NxWebViewJSContext& context);
    void getVlt_sid(NxWebViewJSContext& context);
    void showVipUpgradeDialog(NxWebViewJSContext& context);
    void upgradeVip(NxWebViewJSContext& context);
    void showUserSecureIdentityDialog(NxWebViewJSContext& context);
    void openDocsOnlineFile(NxWebViewJSContext& context);
    void isSupportSendFile(NxWebViewJSContext& context);
    void sendFile(NxWebViewJSContext& context);
    void jsReload(NxWebViewJSContext& context);
    void jsReloadCef(NxWebViewJSContext& context);
    void showNetDetect(NxWebViewJSContext& context);
    void openVirtualCloudDisk(NxWebViewJSContext& context);
    void callFileUploader(NxWebViewJSContext& context);
    void uploadFileDrag(NxWebViewJSContext& context);
    void showFileUploadProgress(NxWebViewJSContext& context);
    void showFileDownloadProgress(NxWebViewJSContext& context);
    void fileUploadListener(NxWebViewJSContext& context);
    void callFileDownload(NxWebViewJSContext& context);
    void fileDownloadListener(NxWebViewJSContext& context);
    void registerCookieUpdateHandler(NxWebViewJSContext& context);
    void openProcessOnPage(NxWebViewJSContext& context);
    void isSupportParallelCloseCollaboration(NxWebViewJSContext& context);
    void notifyCloseCooperationResult(NxWebViewJSContext& context);
    void getOpenCooperationResult(NxWebViewJSContext& context);

    // What reaches the bridge from elsewhere; not callable by the page.
    void onNetworkRequestFinish(const QString& replyName, const QByteArray& data);
    void onNotifyStopCollaboration(const QJsonObject& info);
    void onLoadFinished(bool ok);
    void onWebFileReady(const QMap<QString, QString>& info);
    void onDragEnter(const QStringList& files);
    /** The reply to a folder upload: nothing follows from it. */
    void onBatchUploadFileListToAnyExistedPath(bool success, const QString& requestId,
                                               const stringMap& reply);
    void onGetUploadStateTimerTimeout();
    void onGetBatchUploadFileListState(bool success, const QString& requestId, const NRpcResponse& reply);
    void onBatchDownloadCloudFilesToPath(bool success, const QString& requestId,
                                         const DownloadCloudFilesResult& result);
    void onGetDownloadStateTimerTimeout();
    void onGetBatchDownloadCloudFilesState(bool success, const QString& requestId, const NRpcResponse& reply);
    void OnGetRoamingMode(bool success, const QString& requestId, const NRpcResponse& reply);
    void OnSetRoamingMode(bool success, const QString& requestId, const NRpcResponse& reply);
    void onSendFile(const QVariantMap& arguments);

private:
    /** The document is gone: what it waits for is let go. */
    void forgetDocument();
    void initDriveHandler();
    void initStorageHandlers();
    void openFileImpl(const OpenArguments& arguments);
    void uploadFolder(const QString& groupId, const QString& parentId, const QString& folder);
    void uploadFileList(const QStringList& paths, const QString& groupId, const QString& parentId,
                        const QString& fileId);
    /** Watches every file below a folder. */
    void collectFolderFiles(const QString& folder);
    /** The folders that were not watched before. */
    QStringList watchFolderDownloads(const QStringList& folderIds);
    void endUploadWatch();
    void endDownloadWatch();
    /** Asks the cloud service for the states of transfers. */
    void queryStates(const QString& function, const QSet<QString>& names, const char* slot);
    /** Whether a reply of the cloud service to a question about transfers is the present document's. */
    bool isOfPresentDocument(const QString& requestId);
    /** Calls a function of the page that it gave a name of; nothing without a name. */
    void callNamedCallback(const NxWebViewJSCallback& callback, const QJsonObject& data);
    /** What came of it, for the page. */
    QString closeCooperation(const QVariantMap& arguments);
    QString returnFromLocalDocument(const QString& fileId);
    static void setReplyStatus(NxWebViewJSContext& context, bool ok, const QString& message);

    NxWebViewJSCallback m_uploadCallback;
    NxWebViewJSCallback m_downloadCallback;
    NxWebViewJSCallback m_loginCallback;
    QMap<QString, NxWebViewJSContext> m_pendingContexts;
    QNetworkAccessManager* m_network = nullptr;
    QPointer<NHelioAppPage> m_page;
    QSet<QString> m_uploadPaths;
    QSet<QString> m_downloadTaskIds;
    QSet<QString> m_downloadDirIds;
    QTimer m_uploadStateTimer;
    QTimer m_downloadStateTimer;
    int m_idleDownloadPolls = 0;
    QHash<QString, quint64> m_transferRequests; //!< open requests and the documents they are made for
    QString m_lastDir;
    QPointer<NHelioBrowserWidgetBase> m_browser;
    std::unique_ptr<NHelioBrowserPageProxy> m_pageProxy;
    NDOPStorageHandler* m_storageHandler = nullptr;
    NDOPStorageInfoHandler* m_storageInfoHandler = nullptr;
    NDOPStorageFileHandler* m_storageFileHandler = nullptr;
    NDOPWebviewPreloadHandler* m_preloadHandler = nullptr;
    NPrintFileHandler* m_printHandler = nullptr;
    NSorrelDockpanelJsHandler* m_sidePanelHandler = nullptr;
    NHelioDockPanelJsHandler* m_dockMessageHandler = nullptr;
    QString m_officeType;
    bool m_openCooperationResult = false;
    ClipboardCalls m_clipboardCalls{[this](const NxWebViewJSContext& call) { publishResult(call); }};
    std::unique_ptr<NVltCloudWidgets> m_cloudWidgets; //!< made when the first file is sent
};
