#pragma once

#include "nheliostat/NHelioCloudSvrProxy.h"
#include "nheliostat/framework/LostUploads.h"
#include "nheliostat/framework/ShellCloudService.h"
#include "nheliostat/framework/SlotReply.h"
#include "vltcloudsvr/common/Transfers.h"

#include <QStringList>

#include <functional>

class ICloudWindows;

/**
 * Knows the user that the shell was given, and calls the cloud service process for them. With nobody signed
 * in the records are those of no user.
 *
 * `invokeCloudFunction` knows the function "tavaIpcCall" with an argument named "TavaIpcArg" (a
 * vlt::tava::TavaIpcArg), and any function of the service with an argument named "QStringList", whose texts
 * become its arguments by position. "tavaIpcCall" with another argument is answered with success and code 6,
 * any other function with another argument, or one that the service does not know, without success.
 *
 * An order of transfers that the service did not take is told: by `orderFailed`, and, of uploads, by the
 * states that are asked for.
 */
class ShellCloudSvrProxy final : public NHelioCloudSvrProxy
{
    Q_OBJECT
public:
    ShellCloudSvrProxy(NHelioUserInfo user, const ShellCloudService& service, QObject* parent = nullptr);
    ~ShellCloudSvrProxy() override;

    const NHelioUserInfo& user() const { return m_user; }
    void setUser(const NHelioUserInfo& user);
    bool isLoggedIn() const override { return m_user.loggedIn; }
    bool currentUserInfo(NHelioUserInfo& info) const override;
    /** Null (the start) for a program without windows; not owned. */
    void setWindows(ICloudWindows* windows) { m_windows = windows; }

    QString createDOPRootData(const QString& fileId, QObject* receiver, const char* slot) override;
    QString removeDOPRootData(const QString& localId, QObject* receiver, const char* slot) override;
    QString getDOPFileInfo(const QString& localId, const QString& fileId, QObject* receiver,
                           const char* slot) override;
    QString updateDOPFileInfo(const QString& localId, const QString& data, const QString& source,
                              QObject* receiver, const char* slot) override;
    QString unzipDOPFile(const QString& localId, const QString& isCompress, const QString& isRemoveZip,
                         const QString& source, const QString& destination, QObject* receiver,
                         const char* slot) override;
    QString folderUpload(const QString& groupId, const QString& parentId, const QString& localFolder,
                         QObject* receiver, const char* slot, const QString& option) override;
    QString batchUploadFileListToAnyExistedPath(const QString& groupId, const QString& parentId,
                                                const QStringList& paths, const QString& fileId,
                                                bool keepsPaths, QObject* receiver, const char* slot,
                                                const QString& option) override;
    QString downloadDir(const QString& groupId, const QStringList& folderIds, const QString& localDirectory,
                        QObject* receiver, const QString& option) override;
    QString downloadCloudFiles(const QStringList& fileIds, const QString& localDirectory,
                               const QString& historyId, QObject* receiver, const char* slot) override;
    QString invokeCloudFunction(const QString& function, QGenericArgument argument, QObject* receiver,
                                const char* slot) override;
    QString callCloudMethod(const QString& method, const QStringList& arguments, QObject* receiver,
                            const char* slot) override;

    // What windows of transfers show and offer; see vltcloudsvr/common/Transfers.h.
    using OnTransfers = std::function<void(bool success, const vlt::cloudsvr::TransferList&)>;
    /** At most `largestTransferPage` rows; answered at a later turn of the event loop. */
    void listTransfers(vlt::cloudsvr::TransferDirection direction, int offset, int count, OnTransfers reply);
    /** Each stops; a stopped one can be tried again and then begins anew. */
    void cancelTransfers(const QStringList& ids);
    /** Failed and stopped ones are queued again; a failed one goes on where it stood. */
    void retryTransfers(const QStringList& ids);
    /** Forgets those that are finished, failed or stopped. */
    void clearFinishedTransfers(vlt::cloudsvr::TransferDirection direction);

    QString tavaDlgObjIdentifier() const override { return m_dialogObject; }
    void sendDialogCommand(const QString& command, const QString& dialogObject,
                           NHelioSubPage* subPage) override;

    void showFileUploadProgress(QWidget* parent) override;
    void showFileDownloadProgress(QWidget* parent) override;
    void showLoginPrompt(QWidget* parent, const QString& reason, const QString& source) override;
    void showMembershipUpgrade(const QString& pageSource, const QString& product, int kind,
                               int option) override;
    void openVirtualCloudDisk(const QString& userId, const QString& groupId, const QString& folderId,
                              const QString& from, bool newWindow) override;
    void prepareToggleModeLoadingMask(QWidget* widget, std::function<void()> completed) override;
    void notifyOpenPrintFiles(NHelioMainWindow* window, const QString& path, const QString& fileId,
                              std::function<void(const QJsonObject& result)> completed) override;

    /** Whether the process runs; cheap. */
    bool isServiceRunning() const { return m_client.isRunning(); }
    /** Starts the process unless it runs; blocks for some seconds at most, and only when told to wait. */
    bool startService(const QStringList& arguments, bool wait) { return m_client.start(arguments, wait); }

Q_SIGNALS:
    /** The service tells of something, see vlt::cloudsvr::names; again after it was started again. */
    void serviceEvent(const QString& name, const QMap<QString, QString>& values);
    /** Transfers began, moved on or ended; about four times a second at most. */
    void transfersChanged();
    /** What the user asked for is not going to happen; the message is for people. */
    void orderFailed(vlt::cloudsvr::TransferDirection direction, const QString& message);
    /** A command that was sent to the dialogs of the service. */
    void commandReceived(const QString& command, NHelioSubPage* subPage);

private:
    using Reply = vlt::cloudsvr::CloudServiceClient::Reply;
    using Values = QMap<QString, QString>;

    QString call(QLatin1String function, const Values& arguments, QObject* receiver, const char* slot);
    /** For slots that take something else than a TavaIpcResult. */
    QString callTyped(const QString& function, const Values& arguments, const Reply& reply,
                      const QString& requestId);
    QString callGeneric(const QString& function, const QStringList& arguments, QObject* receiver,
                        const char* slot);
    void command(QLatin1String function, const QString& argument);
    using OnOrder = std::function<void(bool isTaken, const Values&)>;
    void orderUpload(QLatin1String function, const LostUploads::Order& order, const Values& arguments,
                     const SlotReply& reply);
    void orderDownload(QLatin1String function, const Values& arguments, const OnOrder& answered);
    void order(vlt::cloudsvr::TransferDirection direction, QLatin1String function, const Values& arguments,
               const std::function<void(const QString& problem, const Values&)>& answered);
    vlt::cloudsvr::Caller caller() const;
    void onServiceStarted();
    void onServiceLost();
    void onServiceEvent(const QString& name, const Values& values);
    void resumeTransfers();

    NHelioUserInfo m_user;
    const QString m_dialogObject;
    const QString m_apiUrl;
    const QMap<QString, QString> m_resolve;
    ICloudWindows* m_windows = nullptr;
    bool m_hasLostService = false;
    bool m_hasActiveTransfers = false;
    LostUploads m_lostUploads; //!< of the user
    int m_resumptions = 0;     //!< since transfers last came to an end
    vlt::cloudsvr::CloudServiceClient m_client;
};
