#include "nheliostat/framework/ShellCloudSvrProxy.h"

#include "zeolite/NxLoggerLite.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTimer>
#include <QUuid>

using namespace vlt::cloudsvr;

namespace {

constexpr int resumeMs = 500;
constexpr int mostResumptions = 5;

QString newRequestId()
{
    return QUuid::createUuid().toString(QUuid::Id128);
}

/** Whether the call did what it was to do; says so when it did not. */
bool isDone(const QString& what, bool success, const CallResult& result)
{
    if (success && result.code == ResultCode::Ok)
        return true;
    NxLoggerLite::writeWarning(QStringLiteral("shell"),
                               success ? QStringLiteral("vltcloudsvr refused %1: %2")
                                             .arg(what, result.values.value(QStringLiteral("error")))
                                       : QStringLiteral("vltcloudsvr did not answer %1").arg(what));
    return false;
}

} // namespace

QString ShellCloudSvrProxy::folderUpload(const QString& groupId, const QString& parentId,
                                         const QString& localFolder, QObject* receiver, const char* slot,
                                         const QString& option)
{
    Q_UNUSED(option)
    const SlotReply reply(newRequestId(), receiver, slot);
    orderUpload(names::folderUpload, {groupId, parentId, {localFolder}},
                {{QStringLiteral("groupid"), groupId},
                 {QStringLiteral("parentid"), parentId},
                 {QStringLiteral("path"), localFolder}},
                reply);
    return reply.requestId();
}

QString ShellCloudSvrProxy::batchUploadFileListToAnyExistedPath(
    const QString& groupId, const QString& parentId, const QStringList& paths, const QString& fileId,
    bool keepsPaths, QObject* receiver, const char* slot, const QString& option)
{
    Q_UNUSED(keepsPaths)
    Q_UNUSED(option)
    const SlotReply reply(newRequestId(), receiver, slot);
    const QByteArray list = QJsonDocument(QJsonArray::fromStringList(paths)).toJson(QJsonDocument::Compact);
    orderUpload(names::uploadFiles, {groupId, parentId, paths},
                {{QStringLiteral("groupid"), groupId},
                 {QStringLiteral("parentid"), parentId},
                 {QStringLiteral("paths"), QString::fromUtf8(list)},
                 {QStringLiteral("fileid"), fileId}},
                reply);
    return reply.requestId();
}

QString ShellCloudSvrProxy::downloadDir(const QString& groupId, const QStringList& folderIds,
                                        const QString& localDirectory, QObject* receiver,
                                        const QString& option)
{
    Q_UNUSED(receiver)
    Q_UNUSED(option)
    orderDownload(names::downloadDir,
                  {{QStringLiteral("groupid"), groupId},
                   {QStringLiteral("folderids"), folderIds.join(u'|')},
                   {QStringLiteral("directory"), localDirectory}},
                  [](bool, const Values&) {});
    return newRequestId();
}

QString ShellCloudSvrProxy::downloadCloudFiles(const QStringList& fileIds, const QString& localDirectory,
                                               const QString& historyId, QObject* receiver, const char* slot)
{
    const SlotReply reply(newRequestId(), receiver, slot);
    const auto deliver = [reply](bool isTaken, const Values& values) {
        DownloadCloudFilesResult told;
        const QString joined = values.value(QStringLiteral("taskids"));
        for (const QString& id : joined.split(u'|', Qt::SkipEmptyParts))
            told.taskIds.append(id.toUtf8());
        reply.deliver(isTaken, "DownloadCloudFilesResult", told);
    };
    orderDownload(names::downloadFiles,
                  {{QStringLiteral("fileids"), fileIds.join(u'|')},
                   {QStringLiteral("directory"), localDirectory},
                   {QStringLiteral("historyid"), historyId}},
                  deliver);
    return reply.requestId();
}

void ShellCloudSvrProxy::orderUpload(QLatin1String function, const LostUploads::Order& uploads,
                                     const Values& arguments, const SlotReply& reply)
{
    m_lostUploads.begin(uploads);
    order(TransferDirection::Upload, function, arguments,
          [this, uploads, reply, user = m_user.userId](const QString& problem, const Values& values) {
              if (!problem.isEmpty() && user == m_user.userId)
                  m_lostUploads.lose(uploads, problem);
              reply.deliver(problem.isEmpty(), "stringMap", values);
          });
}

void ShellCloudSvrProxy::orderDownload(QLatin1String function, const Values& arguments,
                                       const OnOrder& answered)
{
    order(TransferDirection::Download, function, arguments,
          [answered](const QString& problem, const Values& values) { answered(problem.isEmpty(), values); });
}

void ShellCloudSvrProxy::order(TransferDirection direction, QLatin1String function, const Values& arguments,
                               const std::function<void(const QString& problem, const Values&)>& answered)
{
    const auto deliver = [this, direction, function, answered](bool success, const CallResult& result) {
        QString problem;
        if (isDone(function, success, result)) {
            // Should the service die before it says so itself.
            m_hasActiveTransfers = true;
        } else {
            problem = success ? result.values.value(QStringLiteral("error")) : QString();
            if (problem.isEmpty())
                problem = tr("The cloud service does not answer");
        }
        answered(problem, result.values);
        if (!problem.isEmpty())
            Q_EMIT orderFailed(direction, problem);
    };
    callTyped(function, arguments, deliver, {});
}

QString ShellCloudSvrProxy::callCloudMethod(const QString& method, const QStringList& arguments,
                                            QObject* receiver, const char* slot)
{
    return callGeneric(method, arguments, receiver, slot);
}

QString ShellCloudSvrProxy::callGeneric(const QString& function, const QStringList& arguments,
                                        QObject* receiver, const char* slot)
{
    const SlotReply reply(newRequestId(), receiver, slot);
    Values values;
    for (int i = 0; i < arguments.size(); ++i)
        values.insert(positionKey(i), arguments[i]);
    return callTyped(
        function, values,
        [this, reply, function, paths = arguments.value(0)](bool success, const CallResult& result) {
            const bool isWell = isDone(function, success, result);
            Values told = isWell ? result.values : Values();
            if (function == names::uploadStates)
                m_lostUploads.addStates(paths, told);
            reply.deliver(isWell, "NRpcResponse", NRpcResponse{told});
        },
        reply.requestId());
}

void ShellCloudSvrProxy::listTransfers(TransferDirection direction, int offset, int count, OnTransfers reply)
{
    const auto deliver = [reply = std::move(reply)](bool success, const CallResult& result) {
        const bool isWell = isDone(names::listTransfers, success, result);
        reply(isWell, isWell ? TransferList::fromValues(result.values) : TransferList());
    };
    callTyped(names::listTransfers,
              {{QStringLiteral("direction"), toText(direction)},
               {QStringLiteral("offset"), QString::number(offset)},
               {QStringLiteral("count"), QString::number(count)}},
              deliver, {});
}

void ShellCloudSvrProxy::command(QLatin1String function, const QString& argument)
{
    callTyped(function, {{positionKey(0), argument}},
              [function](bool success, const CallResult& result) { isDone(function, success, result); }, {});
}

void ShellCloudSvrProxy::cancelTransfers(const QStringList& ids)
{
    command(names::cancelTransfers, ids.join(u'|'));
}

void ShellCloudSvrProxy::retryTransfers(const QStringList& ids)
{
    command(names::retryTransfers, ids.join(u'|'));
}

void ShellCloudSvrProxy::clearFinishedTransfers(TransferDirection direction)
{
    command(names::clearFinishedTransfers, toText(direction));
}

void ShellCloudSvrProxy::onServiceEvent(const QString& name, const Values& values)
{
    if (name == names::transfersChanged) {
        m_hasActiveTransfers = values.value(QStringLiteral("active")) == QLatin1String("1");
        if (!m_hasActiveTransfers)
            m_resumptions = 0;
        Q_EMIT transfersChanged();
    }
    Q_EMIT serviceEvent(name, values);
}

void ShellCloudSvrProxy::resumeTransfers()
{
    // Any call starts the service and makes it go on; one that dies again and again is left alone.
    if (m_hasActiveTransfers && m_resumptions++ < mostResumptions)
        QTimer::singleShot(resumeMs, this, [this] { callGeneric(names::getRoamingMode, {}, nullptr, ""); });
}
