#include "offline/NDOPStorageFileHandler.h"

#include "base/NClock.h"
#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioCloudSvrProxy.h"
#include "offline/LargeReply.h"
#include "offline/LinklessFiles.h"
#include "offline/LocalPackagePath.h"
#include "offline/NReadDataSteamTask.h"
#include "offline/NReadTask.h"
#include "offline/NRemoveTask.h"
#include "offline/NUpdateTask.h"
#include "offline/NWriteDataSteamTask.h"
#include "offline/PackagePlace.h"
#include "zeolite/JsonHelper.h"
#include "zeolite/NxWebViewAsynJSObject.h"

#include <QFileInfo>
#include <QJsonObject>
#include <QThreadPool>

namespace {

const QString callbackArgument = QStringLiteral("callback");

QString text(const QVariantMap& arguments, const char* name)
{
    return arguments.value(QLatin1String(name)).toString();
}

bool flag(const QVariantMap& arguments, const char* name)
{
    return arguments.value(QLatin1String(name)).toBool();
}

QString flagText(const QVariantMap& arguments, const char* name)
{
    return flag(arguments, name) ? QStringLiteral("true") : QStringLiteral("false");
}

bool isBase64File(const QVariantMap& arguments)
{
    return text(arguments, "crypto").compare(QLatin1String("base64"), Qt::CaseInsensitive) == 0;
}

QString failText(const QString& error)
{
    return JsonHelper::convertQJsonToString(
        {{QStringLiteral("callstatus"), QStringLiteral("fail")}, {QStringLiteral("err"), error}});
}

NHelioCloudSvrProxy* cloudService()
{
    const NHelioApplication* application = NHelioApplication::instance();
    return application ? application->cloudSvrProxy() : nullptr;
}

/** Tells the package's record when it was used; nobody waits for it. */
void recordTime(const QString& localId, const char* member, const char* source)
{
    if (NHelioCloudSvrProxy* proxy = cloudService()) {
        const QJsonObject data{{QLatin1String(member), nclock::nowMs()}};
        proxy->updateDOPFileInfo(localId, JsonHelper::convertQJsonToString(data), QLatin1String(source),
                                 nullptr, "");
    }
}

bool createFile(const QString& path, const QVariantMap& arguments)
{
    const QByteArray bytes = QByteArray::fromBase64(text(arguments, "data").toLatin1());
    return nlinklessfiles::makeParentFolder(path) &&
           nlinklessfiles::writeFile(path, isBase64File(arguments) ? bytes.toBase64() : bytes);
}

} // namespace

std::optional<QString> NDOPStorageFileHandler::packageRoot(NxWebViewJSContext& context,
                                                           const QVariantMap& arguments) const
{
    QString error = QStringLiteral("localId isEmpty");
    if (const QString localId = text(arguments, "localId"); !localId.isEmpty()) {
        const QString root = localPckRootPath(localId);
        if (!root.isEmpty())
            return root;
        error = QStringLiteral("localPckRootPath isEmpty");
    }
    replyError(context, error);
    return std::nullopt;
}

std::optional<QString> NDOPStorageFileHandler::targetPath(NxWebViewJSContext& context,
                                                          const QVariantMap& arguments, Target target) const
{
    const std::optional<QString> packageDirectory = packageRoot(context, arguments);
    if (!packageDirectory)
        return std::nullopt;
    const QString root = npackageplace::resolvedRoot(*packageDirectory);
    std::optional<QString> path = npackageplace::pathOf(root, text(arguments, "relativePos"));
    QString error;
    if (!path || (*path == root && target != Target::Folder))
        error = QStringLiteral("relativePos is invalid");
    else if (target == Target::Existing && !QFileInfo::exists(*path))
        error = QStringLiteral("targetPath does not exist");
    else
        return path;
    replyError(context, error);
    return std::nullopt;
}

void NDOPStorageFileHandler::create(NxWebViewJSContext& context)
{
    const QVariantMap arguments = parseContextArgs(context, true);
    const bool isFolder = flag(arguments, "isFolder");
    const auto path = targetPath(context, arguments, isFolder ? Target::Folder : Target::File);
    if (!path)
        return;
    if (isFolder ? nlinklessfiles::makeFolder(*path) : createFile(*path, arguments))
        replyOk(context);
    else
        replyError(context, QString());
}

void NDOPStorageFileHandler::read(NxWebViewJSContext& context)
{
    const QVariantMap arguments = parseContextArgs(context, true);
    const NxWebViewJSCallback callback = context.getCallback(QStringLiteral("dataCallbackName"));
    if (callback.isEmpty())
        return replyError(context, QStringLiteral("readDataCB isEmpty"));
    const std::optional<QString> path = targetPath(context, arguments, Target::Existing);
    if (!path)
        return;
    replyOk(context);
    auto* task = new NReadTask(*path);
    const bool isBase64 = isBase64File(arguments);
    connect(
        task, &NReadTask::finished, this,
        [this, callback, isBase64](bool ok, const QByteArray& data) {
            if (!isAwaited(callback))
                return;
            if (!ok)
                return callBack(callback, failText({}));
            const QJsonObject page{{QStringLiteral("cur"), 0}, {QStringLiteral("total"), 1}};
            callBack(callback, nlargereply::withBody(isBase64 ? QByteArray::fromBase64(data) : data,
                                                     {{QStringLiteral("page"), page}},
                                                     {{QStringLiteral("callstatus"), QStringLiteral("ok")}}));
        },
        Qt::QueuedConnection);
    QThreadPool::globalInstance()->start(task);
    recordTime(text(arguments, "localId"), "accessTimeL", "jsapiFileRead");
}

template <typename Task>
void NDOPStorageFileHandler::startWriting(Task* task, const NxWebViewJSCallback& callback, const QString& ok,
                                          const QString& failure)
{
    connect(
        task, &Task::finished, this,
        [=](bool written) { callBack(callback, written ? ok : failText(failure)); }, Qt::QueuedConnection);
    QThreadPool::globalInstance()->start(task);
}

void NDOPStorageFileHandler::update(NxWebViewJSContext& context)
{
    const QVariantMap arguments = parseContextArgs(context, true);
    const NxWebViewJSCallback callback = context.getCallback(callbackArgument);
    if (callback.isEmpty())
        return replyError(context, QStringLiteral("callBack isEmpty"));
    const std::optional<QString> path = targetPath(context, arguments, Target::File);
    if (!path)
        return;
    startWriting(
        new NUpdateTask(*path, text(arguments, "data"), flag(arguments, "append"), isBase64File(arguments)),
        callback, makeOkResult(), {});
    recordTime(text(arguments, "localId"), "modifyTimeL", "jsapiFileUpdate");
}

void NDOPStorageFileHandler::remove(NxWebViewJSContext& context)
{
    const QVariantMap arguments = parseContextArgs(context, true);
    const NxWebViewJSCallback callback = context.getCallback(callbackArgument);
    if (callback.isEmpty())
        return replyError(context, QStringLiteral("callBack isEmpty"));
    if (const auto path = targetPath(context, arguments, Target::Existing))
        startWriting(new NRemoveTask(*path, flag(arguments, "isFolder")), callback, makeOkResult(), {});
}

void NDOPStorageFileHandler::readDataSteam(NxWebViewJSContext& context)
{
    const QVariantMap arguments = parseContextArgs(context, true);
    const std::optional<QString> path = targetPath(context, arguments, Target::Existing);
    if (!path)
        return;
    auto* task = new NReadDataSteamTask(*path);
    connect(
        task, &NReadDataSteamTask::finished, this,
        [this, callback = context.getCallback(callbackArgument)](bool ok, const QByteArray& data) {
            if (!isAwaited(callback))
                return;
            callBack(callback,
                     ok ? nlargereply::withText(data) : failText(QStringLiteral("read data steam fail")));
        },
        Qt::QueuedConnection);
    QThreadPool::globalInstance()->start(task);
}

void NDOPStorageFileHandler::writeDataSteam(NxWebViewJSContext& context)
{
    const QVariantMap arguments = parseContextArgs(context, true);
    const std::optional<QString> path = targetPath(context, arguments, Target::File);
    if (!path)
        return;
    const QJsonObject result{{QStringLiteral("result"), true}};
    const QString ok = JsonHelper::convertQJsonToString(
        {{QStringLiteral("callstatus"), QStringLiteral("ok")}, {QStringLiteral("result"), result}});
    startWriting(new NWriteDataSteamTask(*path, text(arguments, "data").toUtf8(), flag(arguments, "append")),
                 context.getCallback(callbackArgument), ok, QStringLiteral("write data steam fail"));
}

void NDOPStorageFileHandler::unzip(NxWebViewJSContext& context)
{
    const QVariantMap arguments = parseContextArgs(context, true);
    const QString localId = text(arguments, "localId");
    const QString relativePos = text(arguments, "relativePos");
    const QString distRelativePos = text(arguments, "distRelativePos");
    if (flag(arguments, "isEncrypt"))
        return replyError(context, QStringLiteral("encrypt not support"));
    if (localId.isEmpty())
        return replyError(context, QStringLiteral("localId isEmpty"));
    if (relativePos.isEmpty() || distRelativePos.isEmpty())
        return replyError(context, QStringLiteral("path isEmpty"));
    const std::optional<QString> root = packageRoot(context, arguments);
    if (!root)
        return;
    // The service compares with the directory as it knows it: links that lead to it stay.
    const std::optional<QString> source = npackageplace::pathOf(*root, relativePos);
    const std::optional<QString> destination = npackageplace::pathOf(*root, distRelativePos);
    if (!source || *source == *root || !destination)
        return replyError(context, QStringLiteral("relativePos is invalid"));
    if (!QFileInfo(*source).isFile())
        return replyError(context, QStringLiteral("srcPath isVaild"));
    NHelioCloudSvrProxy* proxy = cloudService(); // it told the root
    const QString requestId =
        proxy->unzipDOPFile(localId, flagText(arguments, "isCompress"), flagText(arguments, "isRemoveZip"),
                            *source, *destination, this, "onUnzip");
    m_pendingCallbacks.insert(requestId, context.getCallback(callbackArgument));
}

void NDOPStorageFileHandler::onUnzip(bool success, const QString& requestId, const TavaIpcResult& result)
{
    if (!m_pendingCallbacks.contains(requestId))
        return;
    callBack(m_pendingCallbacks.take(requestId),
             success ? makeOkResult() : makeFailResult(result.code, QStringLiteral("unzip error")));
}
