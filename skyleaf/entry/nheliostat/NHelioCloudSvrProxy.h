#pragma once

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
};

/** The shell's way to the cloud service. User-interface thread. */
class NHelioCloudSvrProxy : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /** Fills the record; false, with the record untouched, when the service does not know. */
    virtual bool currentUserInfo(NHelioUserInfo& info) const = 0;

Q_SIGNALS:
    void loginStatusChanged();
    /** {"fileId", "fileName"}: collaboration on the file stopped. */
    void sigNotifyStopCollaboration(const QJsonObject& info);
};
