#include "bridge/NHelioCloudDocsAsynJsObj.h"

#include "base/NDocsLog.h"
#include "handlers/NPrintFileHandler.h"
#include "handlers/NSorrelDockpanelJsHandler.h"
#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioCloudSvrProxy.h"
#include "nrt/NSettings.h"
#include "nrt/networkAccess.h"
#include "nvltcloudmodule/NVltCloudWidgets.h"
#include "offline/NDOPStorageFileHandler.h"
#include "offline/NDOPStorageHandler.h"
#include "offline/NDOPStorageInfoHandler.h"
#include "offline/NDOPWebviewPreloadHandler.h"
#include "proxy/NDOPConfig.h"
#include "zeolite/JsonHelper.h"
#include "zeolite/NxJSApiEventHandler.h"
#include "zeolite/NxWebViewContainer.h"

#include <QJsonArray>

namespace {

/** The directory in which file dialogs start: the suite's documents path. */
QString readDocumentsPath()
{
    nrt::NSettings settings(QStringLiteral("Maravel"), QStringLiteral("Office"));
    settings.beginGroup(QStringLiteral("6.0"));
    settings.beginGroup(QStringLiteral("vlt"));
    settings.beginGroup(QStringLiteral("Application Settings"));
    return settings.value(QStringLiteral("DocumentsPath")).toString();
}

} // namespace

NHelioCloudDocsAsynJsObj::NHelioCloudDocsAsynJsObj(QObject* parent, NxWebViewContainer* container,
                                                   NHelioBrowserWidgetBase* browser)
    : NHelioCommonJSAPI(container, parent)
    , m_browser(browser)
{
    setProperty("isCloudDocContainer", true);
    m_lastDir = readDocumentsPath();
    m_network = new nrt::NNetworkAccessManager(this);
    connect(&m_uploadStateTimer, &QTimer::timeout, this,
            &NHelioCloudDocsAsynJsObj::onGetUploadStateTimerTimeout);
    connect(&m_downloadStateTimer, &QTimer::timeout, this,
            &NHelioCloudDocsAsynJsObj::onGetDownloadStateTimerTimeout);
    connect(this, &NHelioCloudDocsAsynJsObj::sigSendFile, this, &NHelioCloudDocsAsynJsObj::onSendFile,
            Qt::QueuedConnection);
    connect(this, &NxWebViewAsynJSObject::documentEnded, this, &NHelioCloudDocsAsynJsObj::forgetDocument);

    const NHelioApplication* application = NHelioApplication::instance();
    if (NHelioCloudSvrProxy* proxy = application ? application->cloudSvrProxy() : nullptr) {
        connect(proxy, &NHelioCloudSvrProxy::sigNotifyStopCollaboration, this,
                &NHelioCloudDocsAsynJsObj::onNotifyStopCollaboration);
    }
}

NHelioCloudDocsAsynJsObj::~NHelioCloudDocsAsynJsObj() = default;

void NHelioCloudDocsAsynJsObj::forgetDocument()
{
    m_uploadCallback = {};
    m_downloadCallback = {};
    m_loginCallback = {};
    m_pendingContexts.clear();
    endUploadWatch();
    endDownloadWatch();
}

void NHelioCloudDocsAsynJsObj::setPage(NHelioAppPage* page)
{
    m_page = page;
    if (m_storageInfoHandler)
        m_storageInfoHandler->setHost(page);
    if (m_preloadHandler)
        m_preloadHandler->setHost(page);
    if (m_printHandler)
        m_printHandler->setHost(page);
}

void NHelioCloudDocsAsynJsObj::setOfficeType(const QString& officeType)
{
    m_officeType = officeType;
    if (m_storageHandler)
        m_storageHandler->setOfficeType(officeType);
}

void NHelioCloudDocsAsynJsObj::forwardPreloadRequest(const QString& replyName, const QByteArray& data,
                                                     qint64 startMs, qint64 endMs)
{
    if (m_preloadHandler)
        m_preloadHandler->notifyDOPPreloadData(replyName, data, startMs, endMs, QString());
}

void NHelioCloudDocsAsynJsObj::setOpenCooperationResult(bool ok)
{
    NxJSApiEventHandler* events = eventHandler();
    if (!events)
        return;
    m_openCooperationResult = ok;
    const QJsonObject data{{QStringLiteral("result"), ok ? QStringLiteral("1") : QStringLiteral("0")}};
    events->raiseEvent(QStringLiteral("opencooperation"), JsonHelper::convertQJsonToString(data));
}

void NHelioCloudDocsAsynJsObj::initHandlers()
{
    initDriveHandler();
    if (NDocsOfflinePage::isDopMasterSwitchOn())
        initStorageHandlers();

    m_printHandler = new NPrintFileHandler(this, this, m_page);
    setHandler(QStringLiteral("docs.print"), m_printHandler);
    m_sidePanelHandler = new NSorrelDockpanelJsHandler(this, this);
    setHandler(QStringLiteral("docs.sorrel"), m_sidePanelHandler);

    if (m_browser) {
        m_dockMessageHandler = new NHelioDockPanelJsHandler(this, this);
        setHandler(QStringLiteral("docs.dockmsg"), m_dockMessageHandler);
        connect(m_browser, &NHelioBrowserWidgetBase::loadFinished, this,
                &NHelioCloudDocsAsynJsObj::onLoadFinished);
        connect(m_browser, &NHelioBrowserWidgetBase::webFileReady, this,
                &NHelioCloudDocsAsynJsObj::onWebFileReady);
    }
    NHelioCommonJSAPI::initHandlers();
}

void NHelioCloudDocsAsynJsObj::initDriveHandler()
{
    if (!m_pageProxy && m_browser)
        m_pageProxy = std::make_unique<NHelioBrowserPageProxy>(m_browser);
    if (!m_pageProxy)
        return;
    QObject* handler =
        m_pageProxy->generateHandler(QStringLiteral("NHelioBrowserDocDriveApiHandler"), this, this);
    if (auto* driveHandler = qobject_cast<NxWebViewJSApiHandler*>(handler))
        setHandler(QStringLiteral("quilldrive"), driveHandler);
}

void NHelioCloudDocsAsynJsObj::initStorageHandlers()
{
    m_storageHandler = new NDOPStorageHandler(this, this);
    m_storageHandler->setOfficeType(m_officeType);
    setHandler(QStringLiteral("docs.storage"), m_storageHandler);
    m_storageInfoHandler = new NDOPStorageInfoHandler(this, this, m_page);
    setHandler(QStringLiteral("docs.storage.info"), m_storageInfoHandler);
    m_storageFileHandler = new NDOPStorageFileHandler(this, this);
    setHandler(QStringLiteral("docs.storage.file"), m_storageFileHandler);
    m_preloadHandler = new NDOPWebviewPreloadHandler(this, this, m_page);
    setHandler(QStringLiteral("webview.preload"), m_preloadHandler);
}

void NHelioCloudDocsAsynJsObj::clouddocsApiVersion(NxWebViewJSContext& context)
{
    context.reply()["callstatus"] = "ok";
    context.reply()["version"] = "1.0.0";
}

void NHelioCloudDocsAsynJsObj::showOfflinePage(NxWebViewJSContext&)
{
    Q_EMIT sigShowOfflinePage();
}

void NHelioCloudDocsAsynJsObj::closeDialog(NxWebViewJSContext&)
{
    Q_EMIT sigClose();
}

void NHelioCloudDocsAsynJsObj::resize(NxWebViewJSContext&) {}

void NHelioCloudDocsAsynJsObj::gotoHomepage(NxWebViewJSContext&)
{
    Q_EMIT sigGotoHomepage();
}

void NHelioCloudDocsAsynJsObj::loginStateChanged(NxWebViewJSContext&) {}

void NHelioCloudDocsAsynJsObj::jsReload(NxWebViewJSContext&)
{
    Q_EMIT sigReload();
}

void NHelioCloudDocsAsynJsObj::jsReloadCef(NxWebViewJSContext&)
{
    Q_EMIT sigReload();
}

void NHelioCloudDocsAsynJsObj::onNetworkRequestFinish(const QString& replyName, const QByteArray& data)
{
    ndocslog::info(QStringLiteral("%1 finished").arg(replyName),
                   "NHelioCloudDocsAsynJsObj::onNetworkRequestFinish");
    if (!m_storageInfoHandler)
        return;
    if (replyName.compare(QLatin1String("data_upgrade"), Qt::CaseInsensitive) == 0)
        Q_EMIT m_storageInfoHandler->uploadFinished(data);
    else if (replyName.compare(QLatin1String("download_file"), Qt::CaseInsensitive) == 0)
        Q_EMIT m_storageInfoHandler->downloadFinished(data);
}

void NHelioCloudDocsAsynJsObj::onLoadFinished(bool ok)
{
    if (m_dockMessageHandler)
        m_dockMessageHandler->notifyPageLoadFinished(ok);
}

void NHelioCloudDocsAsynJsObj::onWebFileReady(const QMap<QString, QString>& info)
{
    if (m_dockMessageHandler)
        m_dockMessageHandler->updateWebFileInfo(info);
}

void NHelioCloudDocsAsynJsObj::onDragEnter(const QStringList& files)
{
    NxJSApiEventHandler* events = eventHandler();
    if (!events)
        return;
    const QJsonObject data{{QStringLiteral("files"), QJsonArray::fromStringList(files)}};
    events->raiseEvent(QStringLiteral("ondragenter"), JsonHelper::convertQJsonToString(data));
}

void NHelioCloudDocsAsynJsObj::setReplyStatus(NxWebViewJSContext& context, bool ok, const QString& message)
{
    context.reply()["callstatus"] = ok ? "ok" : "error";
    context.reply()["errormsg"] = message.toStdString();
}
