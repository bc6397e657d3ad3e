#include "offline/NDOPStorageInfoHandler.h"

#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioCloudSvrProxy.h"
#include "nrt/dirs.h"
#include "offline/IStorageTransferHost.h"
#include "offline/LocalPackagePath.h"
#include "offline/PackageFiles.h"
#include "offline/PackagePlace.h"
#include "offline/TavaProcess.h"
#include "zeolite/JsonHelper.h"
#include "zeolite/NxWebViewAsynJSObject.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QUrl>

namespace {

QString text(const QVariantMap& arguments, const char* name)
{
    return arguments.value(QLatin1String(name)).toString();
}

QString below(const QString& root, const QString& relativePos)
{
    return QDir::toNativeSeparators(root + QDir::separator() + relativePos);
}

/** What a transfer of a package needs. */
struct Transfer
{
    explicit Transfer(const QVariantMap& arguments)
        : localId(text(arguments, "localId"))
        , address(text(arguments, "serverAddress"))
        , relativePos(text(arguments, "relativePos"))
    {
    }
    bool isWhole() const { return !localId.isEmpty() && !address.isEmpty() && !relativePos.isEmpty(); }

    QString localId;
    QString address;
    QString relativePos;
};

/** {"callstatus": "ok", "result": result} as JSON text. */
QString okText(const QJsonValue& result)
{
    return JsonHelper::convertQJsonToString(
        {{QStringLiteral("callstatus"), QStringLiteral("ok")}, {QStringLiteral("result"), result}});
}

} // namespace

NDOPStorageInfoHandler::NDOPStorageInfoHandler(QObject* parent, NxWebViewAsynJSObject* scriptObject,
                                               QObject* host)
    : NDocsOfflinePageJSApiHandlerBase(parent, scriptObject)
    , m_host(host)
{
    connect(this, &NDOPStorageInfoHandler::uploadFinished, this, &NDOPStorageInfoHandler::onUpload);
    connect(this, &NDOPStorageInfoHandler::downloadFinished, this, &NDOPStorageInfoHandler::onDownload);
}

NHelioCloudSvrProxy* NDOPStorageInfoHandler::cloudService(NxWebViewJSContext& context) const
{
    const NHelioApplication* application = NHelioApplication::instance();
    NHelioCloudSvrProxy* proxy = application ? application->cloudSvrProxy() : nullptr;
    if (!proxy)
        replyError(context, QStringLiteral("internal error"));
    return proxy;
}

IStorageTransferHost* NDOPStorageInfoHandler::transferHost(NxWebViewJSContext& context) const
{
    auto* host = dynamic_cast<IStorageTransferHost*>(m_host.data());
    if (!host)
        replyError(context, QStringLiteral("m_host isEmpty"));
    return host;
}

void NDOPStorageInfoHandler::keepCallback(const NxWebViewJSContext& context, const QString& requestId)
{
    m_pendingCallbacks.insert(requestId, context.getCallback(QStringLiteral("callback")));
}

void NDOPStorageInfoHandler::create(NxWebViewJSContext& context)
{
    runTavaProcessIfNotExists();
    const QString fileId = text(parseContextArgs(context, true), "fileId");
    if (fileId.isEmpty())
        return replyError(context, QStringLiteral("fileId isEmpty"));
    if (NHelioCloudSvrProxy* proxy = cloudService(context))
        keepCallback(context, proxy->createDOPRootData(fileId, this, "onCreate"));
}

void NDOPStorageInfoHandler::select(NxWebViewJSContext& context)
{
    runTavaProcessIfNotExists();
    const QVariantMap arguments = parseContextArgs(context, true);
    const QString fileId = text(arguments, "fileId");
    if (fileId.isEmpty())
        return replyError(context, QStringLiteral("fileId isEmpty"));
    if (NHelioCloudSvrProxy* proxy = cloudService(context))
        keepCallback(context, proxy->getDOPFileInfo(text(arguments, "localId"), fileId, this, "onSelect"));
}

void NDOPStorageInfoHandler::update(NxWebViewJSContext& context)
{
    runTavaProcessIfNotExists();
    const QVariantMap arguments = parseContextArgs(context, true);
    const QString localId = text(arguments, "localId");
    const QJsonObject data = QJsonObject::fromVariantMap(arguments.value(QStringLiteral("data")).toMap());
    if (localId.isEmpty() || data.isEmpty())
        return replyError(context, QStringLiteral("param isEmpty"));
    if (NHelioCloudSvrProxy* proxy = cloudService(context))
        keepCallback(context, proxy->updateDOPFileInfo(localId, JsonHelper::convertQJsonToString(data),
                                                       QStringLiteral("docs"), this, "onUpdate"));
}

void NDOPStorageInfoHandler::remove(NxWebViewJSContext& context)
{
    runTavaProcessIfNotExists();
    const QString localId = text(parseContextArgs(context, true), "localId");
    if (localId.isEmpty())
        return replyError(context, QStringLiteral("localId isEmpty"));
    if (NHelioCloudSvrProxy* proxy = cloudService(context))
        keepCallback(context, proxy->removeDOPRootData(localId, this, "onRemove"));
}

void NDOPStorageInfoHandler::onCreate(bool success, const QString& requestId, const TavaIpcResult& result)
{
    answer(QStringLiteral("createDOPRootData"), success, requestId, result);
}

void NDOPStorageInfoHandler::onSelect(bool success, const QString& requestId, const TavaIpcResult& result)
{
    answer(QStringLiteral("getDOPFileInfo"), success, requestId, result);
}

void NDOPStorageInfoHandler::onUpdate(bool success, const QString& requestId, const TavaIpcResult& result)
{
    answer(QStringLiteral("updateDOPFileInfo"), success, requestId, result);
}

void NDOPStorageInfoHandler::onRemove(bool success, const QString& requestId, const TavaIpcResult& result)
{
    answer(QStringLiteral("removeDOPRootData"), success, requestId, result, false);
}

void NDOPStorageInfoHandler::answer(const QString& operation, bool success, const QString& requestId,
                                    const TavaIpcResult& result, bool withData)
{
    if (!m_pendingCallbacks.contains(requestId))
        return;
    const NxWebViewJSCallback callback = m_pendingCallbacks.take(requestId);
    if (!success || result.code != 0)
        return callBack(callback, makeFailResult(result.code, operation + QStringLiteral(" error")));
    callBack(callback,
             withData ? okText(JsonHelper::convertStringToQJson(result.values.value(QStringLiteral("data"))))
                      : makeOkResult());
}

void NDOPStorageInfoHandler::upload(NxWebViewJSContext& context)
{
    IStorageTransferHost* host = transferHost(context);
    if (!host)
        return;
    const QVariantMap arguments = parseContextArgs(context, true);
    const Transfer transfer(arguments);
    const QString packageInfo = text(arguments, "packageInfo");
    if (!transfer.isWhole() || packageInfo.isEmpty())
        return replyError(context, QStringLiteral("params isEmpty"));
    const QString root = localPckRootPath(transfer.localId);
    if (root.isEmpty())
        return replyError(context, QStringLiteral("localPckRootPath isEmpty"));
    m_uploadCallback = context.getCallback(QStringLiteral("callback"));
    const auto zipPath = npackageplace::pathOf(npackageplace::resolvedRoot(root), transfer.relativePos);
    if (!zipPath || !QFileInfo(*zipPath).isFile())
        return replyError(context, QStringLiteral("uploadZipFile not exist"));
    host->uploadPackage(transfer.address, packageInfo, *zipPath);
}

void NDOPStorageInfoHandler::download(NxWebViewJSContext& context)
{
    IStorageTransferHost* host = transferHost(context);
    if (!host)
        return;
    const Transfer transfer(parseContextArgs(context, true));
    if (!transfer.isWhole())
        return replyError(context, QStringLiteral("params isEmpty"));
    if (!QUrl(transfer.address, QUrl::StrictMode).isValid())
        return replyError(context, QStringLiteral("serverAddress is invalid"));
    const QString root = localPckRootPath(transfer.localId);
    if (root.isEmpty())
        return replyError(context, QStringLiteral("localPckRootPath isEmpty"));
    const QString path = below(root, transfer.relativePos);
    if (nrt::dirs::inBlackDownloadDir(path))
        return replyError(context, QStringLiteral("relativePos unsafe in installRootDir"));
    const QFileInfo present(path);
    const bool isOdd =
        present.exists() && !present.isFile() && !present.isDir(); // a pipe would hold the download
    if (isOdd || !npackagefiles::isPlaceWithin(root, path))
        return replyError(context, QStringLiteral("relativePos is invalid"));
    m_downloadCallback = context.getCallback(QStringLiteral("callback"));
    host->downloadPackage(transfer.address, path);
}

void NDOPStorageInfoHandler::onUpload(const QByteArray& body)
{
    callBack(m_uploadCallback, okText(QVariant(body).toBool()));
}

void NDOPStorageInfoHandler::onDownload(const QByteArray& result)
{
    callBack(m_downloadCallback, okText(QVariant(result).toBool()));
}
