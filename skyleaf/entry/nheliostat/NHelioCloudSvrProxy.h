#pragma once

#include "tava/TavaIpcResult.h"

#include <QGenericArgument>
#include <QJsonObject>
#include <QObject>
#include <QString>

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

    /** Calls a function of the service with one argument of a registered type, read before this returns. */
    virtual QString invokeCloudFunction(const QString& function, QGenericArgument argument, QObject* receiver,
                                        const char* slot) = 0;

Q_SIGNALS:
    void loginStatusChanged();
    /** {"fileId", "fileName"}: collaboration on the file stopped. */
    void sigNotifyStopCollaboration(const QJsonObject& info);
};
