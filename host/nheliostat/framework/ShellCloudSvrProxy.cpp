#include "nheliostat/framework/ShellCloudSvrProxy.h"

#include "zeolite/NxLoggerLite.h"

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

void deliverIpcResult(const SlotReply& reply, const QString& what, bool success, const CallResult& result)
{
    if (!success)
        NxLoggerLite::writeWarning(logTag, QStringLiteral("vltcloudsvr did not answer %1").arg(what));
    reply.deliver(success, "TavaIpcResult", TavaIpcResult{static_cast<int>(result.code), result.values});
}

} // namespace

ShellCloudSvrProxy::ShellCloudSvrProxy(NHelioUserInfo user, const ShellCloudService& service, QObject* parent)
    : NHelioCloudSvrProxy(parent)
    , m_user(std::move(user))
    , m_dialogObject(newRequestId())
    , m_apiUrl(service.apiUrl)
    , m_resolve(service.resolve)
    , m_client(service.client)
{
    connect(&m_client, &CloudServiceClient::serviceStarted, this, &ShellCloudSvrProxy::onServiceStarted);
    connect(&m_client, &CloudServiceClient::serviceLost, this, &ShellCloudSvrProxy::onServiceLost);
    connect(&m_client, &CloudServiceClient::eventHappened, this, &ShellCloudSvrProxy::onServiceEvent);
}

ShellCloudSvrProxy::~ShellCloudSvrProxy() = default;

void ShellCloudSvrProxy::setUser(const NHelioUserInfo& user)
{
    if (m_user.userId != user.userId)
        m_lostUploads.clear();
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
    const auto isOf = [&argument](const char* type) {
        return argument.name() && argument.data() && std::strcmp(argument.name(), type) == 0;
    };
    if (function != QLatin1String("tavaIpcCall") && isOf("QStringList"))
        return callGeneric(function, *static_cast<const QStringList*>(argument.data()), receiver, slot);

    const SlotReply reply(newRequestId(), receiver, slot);
    if (function != QLatin1String("tavaIpcCall")) {
        const auto answer = [reply] { reply.deliver(false, "NRpcResponse", NRpcResponse()); };
        QMetaObject::invokeMethod(this, answer, Qt::QueuedConnection);
    } else if (isOf("TavaIpcArg")) {
        m_client.tavaIpcCall(caller(), *static_cast<const vlt::tava::TavaIpcArg*>(argument.data()),
                             [reply, function](bool success, const CallResult& result) {
                                 deliverIpcResult(reply, function, success, result);
                             });
    } else {
        const auto answer = [reply] {
            const CallResult unknown =
                failure(ResultCode::UnsupportedFunction, QStringLiteral("there is no such function"));
            reply.deliver(true, "TavaIpcResult", TavaIpcResult{int(unknown.code), unknown.values});
        };
        QMetaObject::invokeMethod(this, answer, Qt::QueuedConnection);
    }
    return reply.requestId();
}

void ShellCloudSvrProxy::sendDialogCommand(const QString& command, const QString& dialogObject,
                                           NHelioSubPage* subPage)
{
    if (dialogObject == m_dialogObject)
        Q_EMIT commandReceived(command, subPage);
    else
        NxLoggerLite::writeWarning(logTag, QStringLiteral("a command for nobody: %1").arg(command.left(500)));
}

QString ShellCloudSvrProxy::call(QLatin1String function, const Values& arguments, QObject* receiver,
                                 const char* slot)
{
    const SlotReply reply(newRequestId(), receiver, slot);
    return callTyped(
        function, arguments,
        [reply, name = QString(function)](bool success, const CallResult& result) {
            deliverIpcResult(reply, name, success, result);
        },
        reply.requestId());
}

QString ShellCloudSvrProxy::callTyped(const QString& function, const Values& arguments, const Reply& reply,
                                      const QString& requestId)
{
    m_client.call(caller(), function, arguments, reply);
    return requestId;
}

Caller ShellCloudSvrProxy::caller() const
{
    return {m_user.loggedIn ? m_user.userId : QString(), m_user.localDataDir, m_apiUrl, m_resolve,
            m_user.loggedIn ? m_user.cookies : QString()};
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
    resumeTransfers();
}
