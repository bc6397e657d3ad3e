#pragma once

#include "nheliostat/NHelioCloudSvrProxy.h"
#include "nheliostat/framework/ShellCloudService.h"

#include <QStringList>

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
    bool currentUserInfo(NHelioUserInfo& info) const override;

    QString createDOPRootData(const QString& fileId, QObject* receiver, const char* slot) override;
    QString removeDOPRootData(const QString& localId, QObject* receiver, const char* slot) override;
    QString getDOPFileInfo(const QString& localId, const QString& fileId, QObject* receiver,
                           const char* slot) override;
    QString updateDOPFileInfo(const QString& localId, const QString& data, const QString& source,
                              QObject* receiver, const char* slot) override;
    QString unzipDOPFile(const QString& localId, const QString& isCompress, const QString& isRemoveZip,
                         const QString& source, const QString& destination, QObject* receiver,
                         const char* slot) override;
    QString invokeCloudFunction(const QString& function, QGenericArgument argument, QObject* receiver,
                                const char* slot) override;

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
    bool m_hasLostService = false;
    vlt::cloudsvr::CloudServiceClient m_client;
};
