#include "nheliostat/framework/ShellCloudSvrProxy.h"

#include "zeolite/NxLoggerLite.h"

#include <QPointer>
#include <QUuid>

#include "tava/TavaIpc_types.h"

#include <cstring>
#include <utility>

using namespace vlt::cloudsvr;

namespace {

const QString logTag = QStringLiteral("shell");

QString newRequestId()
{
    return QUuid::createUuid().toString(QUuid::Id128);
}

} // namespace

ShellCloudSvrProxy::ShellCloudSvrProxy(NHelioUserInfo user, const ShellCloudService& service, QObject* parent)
    : NHelioCloudSvrProxy(parent)
    , m_user(std::move(user))
    , m_apiUrl(service.apiUrl)
    , m_resolve(service.resolve)
    , m_client(service.client)
{
    connect(&m_client, &CloudServiceClient::serviceStarted, this, &ShellCloudSvrProxy::onServiceStarted);
    connect(&m_client, &CloudServiceClient::serviceLost, this, &ShellCloudSvrProxy::onServiceLost);
    connect(&m_client, &CloudServiceClient::eventHappened, this, &ShellCloudSvrProxy::serviceEvent);
}

ShellCloudSvrProxy::~ShellCloudSvrProxy() = default;

void ShellCloudSvrProxy::setUser(const NHelioUserInfo& user)
{
    m_user = user;
    Q_EMIT loginStatusChanged();
}

bool ShellCloudSvrProxy::currentUserInfo(NHelioUserInfo& info) const
{
    info = m_user;
    return true;
}

QString ShellCloudSvrProxy::createDOPRootData(const QString& fileId, QObject* receiver, const char* slot)
{
    return call(names::createDOPRootData, {{QStringLiteral("fileId"), fileId}}, receiver, slot);
}

QString ShellCloudSvrProxy::removeDOPRootData(const QString& localId, QObject* receiver, const char* slot)
{
    return call(names::removeDOPRootData, {{QStringLiteral("localId"), localId}}, receiver, slot);
}

QString ShellCloudSvrProxy::getDOPFileInfo(const QString& localId, const QString& fileId, QObject* receiver,
                                           const char* slot)
{
    return call(names::getDOPFileInfo,
                {{QStringLiteral("localId"), localId}, {QStringLiteral("fileId"), fileId}}, receiver, slot);
}

QString ShellCloudSvrProxy::updateDOPFileInfo(const QString& localId, const QString& data,
                                              const QString& source, QObject* receiver, const char* slot)
{
    return call(names::updateDOPFileInfo,
                {{QStringLiteral("localId"), localId},
                 {QStringLiteral("data"), data},
                 {QStringLiteral("source"), source}},
                receiver, slot);
}

QString ShellCloudSvrProxy::unzipDOPFile(const QString& localId, const QString& isCompress,
                                         const QString& isRemoveZip, const QString& source,
                                         const QString& destination, QObject* receiver, const char* slot)
{
    return call(names::unzipDOPFile,
                {{QStringLiteral("localId"), localId},
                 {QStringLiteral("isCompress"), isCompress},
                 {QStringLiteral("isRemoveZip"), isRemoveZip},
                 {QStringLiteral("source"), source},
                 {QStringLiteral("destination"), destination}},
                receiver, slot);
}

QString ShellCloudSvrProxy::invokeCloudFunction(const QString& function, QGenericArgument argument,
                                                QObject* receiver, const char* slot)
{
    const QString requestId = newRequestId();
    const CloudServiceClient::Reply reply = replyTo(requestId, function, receiver, slot);
    if (function == QLatin1String("tavaIpcCall") && argument.name() && argument.data() &&
        std::strcmp(argument.name(), "TavaIpcArg") == 0) {
        m_client.tavaIpcCall(caller(), *static_cast<const vlt::tava::TavaIpcArg*>(argument.data()), reply);
    } else {
        const auto answer = [reply] {
            reply(true,
                  failure(ResultCode::UnsupportedFunction, QStringLiteral("there is no such function")));
        };
        QMetaObject::invokeMethod(this, answer, Qt::QueuedConnection);
    }
    return requestId;
}

QString ShellCloudSvrProxy::call(QLatin1String function, const QMap<QString, QString>& arguments,
                                 QObject* receiver, const char* slot)
{
    const QString requestId = newRequestId();
    m_client.call(caller(), function, arguments, replyTo(requestId, function, receiver, slot));
    return requestId;
}

CloudServiceClient::Reply ShellCloudSvrProxy::replyTo(const QString& requestId, const QString& what,
                                                      QObject* receiver, const char* slot) const
{
    return [requestId, what, guarded = QPointer<QObject>(receiver),
            name = QByteArray(slot)](bool success, const CallResult& result) {
        if (!success)
            NxLoggerLite::writeWarning(logTag, QStringLiteral("vltcloudsvr did not answer %1").arg(what));
        if (!guarded || name.isEmpty())
            return;
        const TavaIpcResult told{static_cast<int>(result.code), result.values};
        QMetaObject::invokeMethod(guarded, name.constData(), Q_ARG(bool, success), Q_ARG(QString, requestId),
                                  Q_ARG(TavaIpcResult, told));
    };
}

Caller ShellCloudSvrProxy::caller() const
{
    return {m_user.loggedIn ? m_user.userId : QString(), m_user.localDataDir, m_apiUrl, m_resolve};
}

void ShellCloudSvrProxy::onServiceStarted()
{
    NxLoggerLite::writeInfo(logTag, m_hasLostService ? QStringLiteral("vltcloudsvr started again")
                                                     : QStringLiteral("vltcloudsvr started"));
}

void ShellCloudSvrProxy::onServiceLost()
{
    m_hasLostService = true;
    NxLoggerLite::writeWarning(logTag, QStringLiteral("vltcloudsvr ended; the next call starts it again"));
}
