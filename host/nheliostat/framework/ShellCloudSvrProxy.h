#pragma once

#include "nheliostat/NHelioCloudSvrProxy.h"
#include "nheliostat/framework/ShellCloudService.h"

#include <QStringList>

class ICloudWindows;

/**
 * Knows the user that the shell was given, and calls the cloud service process for them. With nobody signed
 * in the records are those of no user.
 *
 * `invokeCloudFunction` knows the function "tavaIpcCall" with an argument named "TavaIpcArg" (a
 * vlt::tava::TavaIpcArg); any other function or argument is answered with success and code 6, without the
 * service.
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

private:
    QString call(QLatin1String function, const QMap<QString, QString>& arguments, QObject* receiver,
                 const char* slot);
    vlt::cloudsvr::CloudServiceClient::Reply replyTo(const QString& requestId, const QString& what,
                                                     QObject* receiver, const char* slot) const;
    vlt::cloudsvr::Caller caller() const;
    void onServiceStarted();
    void onServiceLost();

    NHelioUserInfo m_user;
    const QString m_apiUrl;
    const QMap<QString, QString> m_resolve;
    ICloudWindows* m_windows = nullptr;
    bool m_hasLostService = false;
    vlt::cloudsvr::CloudServiceClient m_client;
};
