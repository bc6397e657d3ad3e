#pragma once

#include "tava/TavaIpcResult.h"

#include <QGenericArgument>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QMetaType>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

class NHelioMainWindow;
class NHelioSubPage;
class QWidget;

using stringMap = QMap<QString, QString>;

/** What a function of the cloud service answered besides its success. */
struct NRpcResponse
{
    stringMap values;
};
Q_DECLARE_METATYPE(NRpcResponse)

struct DownloadCloudFilesResult
{
    QList<QByteArray> taskIds; //!< UTF-8
};
Q_DECLARE_METATYPE(DownloadCloudFilesResult)

/** The signed-in user. */
struct NHelioUserInfo
{
    QString userId;
    bool loggedIn = false;
    QString sessionKey;
    QString cookies;      //!< "name=value; …"
    QString localDataDir; //!< directory of the user's local packages; may be empty
    QString cacheRoot;    //!< directory for temporary files; may be empty
    QString identity1;    //!< the two texts that identify the user to the authentication of requests
    QString identity2;
    bool excludedFromParallelClose = false; //!< collaborations of this user are not closed in parallel
};

/**
 * The shell's way to the cloud service. User-interface thread.
 *
 * A call of the cloud service answers a request id, never empty. Later, at a turn of the event loop of its
 * own, the slot `slot`(bool success, const QString& requestId, const TavaIpcResult& result) of `receiver` is
 * invoked; `success` is false when the call itself failed: the service cannot be reached or ended meanwhile.
 * A receiver that is destroyed gets nothing; a null receiver with an empty slot wants no answer.
 */
class NHelioCloudSvrProxy : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual bool isLoggedIn() const = 0;
    /** Fills the record; false, with the record untouched, when the service does not know. */
    virtual bool currentUserInfo(NHelioUserInfo& info) const = 0;

    // Records of documents that are kept on this machine. A record has a local id and belongs to a cloud
    // file.
    /** Makes the record of a file and the directory of its package; the result holds "localId" and "data". */
    virtual QString createDOPRootData(const QString& fileId, QObject* receiver, const char* slot) = 0;
    virtual QString removeDOPRootData(const QString& localId, QObject* receiver, const char* slot) = 0;
    /** Finds a record by its local id or, when that is empty, by the file; the result's "data" is its JSON
     * text. */
    virtual QString getDOPFileInfo(const QString& localId, const QString& fileId, QObject* receiver,
                                   const char* slot) = 0;
    /** Merges the members of a JSON object into the record; `source` names who asks. */
    virtual QString updateDOPFileInfo(const QString& localId, const QString& data, const QString& source,
                                      QObject* receiver, const char* slot) = 0;
    /** Unpacks a zip file; the flags are "true" or "false". */
    virtual QString unzipDOPFile(const QString& localId, const QString& isCompress,
                                 const QString& isRemoveZip, const QString& source,
                                 const QString& destination, QObject* receiver, const char* slot) = 0;

    // Transfers between this machine and the drive. Paths are absolute. `parentId` names a folder of the
    // group, "0" its root. The last text is an option that this service does not know: empty.
    /** Uploads a folder with everything in it. The slot takes (bool, QString, stringMap). */
    virtual QString folderUpload(const QString& groupId, const QString& parentId, const QString& localFolder,
                                 QObject* receiver, const char* slot, const QString& option) = 0;
    /** Uploads files; a `fileId` that is neither empty nor "0" makes the one path a new version of that file.
     * The slot takes (bool, QString, stringMap). */
    virtual QString batchUploadFileListToAnyExistedPath(const QString& groupId, const QString& parentId,
                                                        const QStringList& paths, const QString& fileId,
                                                        bool keepsPaths, QObject* receiver, const char* slot,
                                                        const QString& option) = 0;
    /** Downloads folders into a directory; tells nobody of it. The folder ids are their task ids. */
    virtual QString downloadDir(const QString& groupId, const QStringList& folderIds,
                                const QString& localDirectory, QObject* receiver, const QString& option) = 0;
    /** Downloads files, or the version `historyId` of them. The slot takes
     * (bool, QString, DownloadCloudFilesResult). */
    virtual QString downloadCloudFiles(const QStringList& fileIds, const QString& localDirectory,
                                       const QString& historyId, QObject* receiver, const char* slot) = 0;

    /**
     * Calls a function of the service with one argument of a registered type, read before this returns. The
     * slot takes (bool, QString, TavaIpcResult) for "tavaIpcCall", else (bool, QString, NRpcResponse).
     */
    virtual QString invokeCloudFunction(const QString& function, QGenericArgument argument, QObject* receiver,
                                        const char* slot) = 0;
    /** Calls a method of the cloud. The slot takes (bool, QString, NRpcResponse). */
    virtual QString callCloudMethod(const QString& method, const QStringList& arguments, QObject* receiver,
                                    const char* slot) = 0;

    // Commands: texts of the form "name&argument&argument…" for the service's own dialogs and lists.
    /** What commands are addressed to. */
    virtual QString tavaDlgObjIdentifier() const = 0;
    /** Sends a command on behalf of a sub page; one that nobody knows, or with another address, is logged. */
    virtual void sendDialogCommand(const QString& command, const QString& dialogObject,
                                   NHelioSubPage* subPage) = 0;

    // Windows of the cloud. A null parent stands for the window in front. None of them blocks.
    virtual void showFileUploadProgress(QWidget* parent) = 0;
    virtual void showFileDownloadProgress(QWidget* parent) = 0;
    virtual void showLoginPrompt(QWidget* parent, const QString& reason, const QString& source) = 0;
    virtual void showMembershipUpgrade(const QString& pageSource, const QString& product, int kind,
                                       int option) = 0;
    virtual void openVirtualCloudDisk(const QString& userId, const QString& groupId, const QString& folderId,
                                      const QString& from, bool newWindow) = 0;
    /** Covers the widget while the document changes hands, and calls `completed` once it is covered. */
    virtual void prepareToggleModeLoadingMask(QWidget* widget, std::function<void()> completed) = 0;
    /** Opens a local file for printing; `completed` gets what came of it, {"result", "msg", …}. */
    virtual void notifyOpenPrintFiles(NHelioMainWindow* window, const QString& path, const QString& fileId,
                                      std::function<void(const QJsonObject& result)> completed) = 0;

Q_SIGNALS:
    void loginStatusChanged();
    /** {"fileId", "fileName"}: collaboration on the file stopped. */
    void sigNotifyStopCollaboration(const QJsonObject& info);
};
