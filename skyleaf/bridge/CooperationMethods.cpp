#include "bridge/CloudWidgets.h"
#include "bridge/EntryTrace.h"
#include "bridge/LocalDocuments.h"
#include "bridge/NHelioCloudDocsAsynJsObj.h"
#include "bridge/ShellAccess.h"

#include "base/NReadOnce.h"
#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/NHelioPage.h"
#include "nheliostat/NHelioSubPage.h"
#include "nrt/product.h"
#include "nvltcloudmodule/NVltCloudWidgets.h"
#include "proxy/NConfigCentreValues.h"
#include "proxy/NDOPSettings.h"
#include "zeolite/NxWebViewJSContext.h"

// The script methods that send files and end collaborations.

namespace {

bool isSendFileOn()
{
    static NReadOnce<bool> isOn([] {
        return nrt::kcmc::support(QStringLiteral("SupportSendFileWindow")) &&
               NClouddocsCCSettings().value(QStringLiteral("isSupportSendFileWindow"), true).toBool();
    });
    return isOn();
}

/** Brings a page that was replaced by its local document back as a tab; nothing without a tab to go to. */
void bringPageBack(NHelioAppPage* page, NHelioMainWindow& window, const QString& fileId)
{
    NHelioCentralArea* centralArea = window.centralArea();
    NHelioTab* tab = centralArea && page ? shellaccess::tabOf(page, &window) : nullptr;
    if (!tab)
        return;
    tab->setAllowReAttachSubwindow(true);
    tab->reAttachSubPage(nullptr);
    tab->setAllowReAttachSubwindow(false);
    centralArea->addPage(page);
    centralArea->setCurrentPage(page);
    page->setProperty("File_ID", fileId);
    if (NHelioSubPage* subPage = page->initialSubPage())
        subPage->activate(QString(), true);
}

} // namespace

void NHelioCloudDocsAsynJsObj::isSupportSendFile(NxWebViewJSContext& context)
{
    traceEntry("NHelioCloudDocsAsynJsObj::isSupportSendFile", __LINE__);
    context.reply()["result"] = isSendFileOn();
    context.reply()["callstatus"] = "ok";
}

void NHelioCloudDocsAsynJsObj::sendFile(NxWebViewJSContext& context)
{
    traceEntry("NHelioCloudDocsAsynJsObj::sendFile", __LINE__);
    context.reply()["result"] = true;
    context.reply()["callstatus"] = "ok";
    QVariantMap arguments = parseContextArgs(context, true);
    arguments.insert(QStringLiteral("widgetType"), QStringLiteral("sendFileWindow"));
    Q_EMIT sigSendFile(arguments);
}

void NHelioCloudDocsAsynJsObj::onSendFile(const QVariantMap& arguments)
{
    if (!isSendFileOn())
        return;
    if (!m_cloudWidgets)
        m_cloudWidgets = cloudwidgets::create();
    if (m_cloudWidgets)
        m_cloudWidgets->openWindow(arguments);
}

void NHelioCloudDocsAsynJsObj::isSupportParallelCloseCollaboration(NxWebViewJSContext& context)
{
    context.reply()["callstatus"] = "ok";
    context.reply()["result"] =
        nconfigvalues::isParallelCloseOn() && !shellaccess::user().excludedFromParallelClose;
}

void NHelioCloudDocsAsynJsObj::notifyCloseCooperationResult(NxWebViewJSContext& context)
{
    context.reply()["callstatus"] = "ok";
    context.reply()["result"] = closeCooperation(parseContextArgs(context, true)).toStdString();
}

QString NHelioCloudDocsAsynJsObj::closeCooperation(const QVariantMap& arguments)
{
    const QString fileId = arguments.value(QStringLiteral("fileId")).toString();
    if (fileId.isEmpty())
        return QStringLiteral("file id is empty");
    if (!arguments.value(QStringLiteral("closeCooperation")).toBool())
        return returnFromLocalDocument(fileId);
    Q_EMIT sig_closeCooperationResult(fileId, true);
    if (m_page)
        m_page->close();
    else
        Q_EMIT sig_shareDlgReady({{QStringLiteral("fileId"), fileId}});
    return {};
}

QString NHelioCloudDocsAsynJsObj::returnFromLocalDocument(const QString& fileId)
{
    if (!NHelioApplication::instance())
        return QStringLiteral("helioApp is nullptr");
    NHelioMainWindow* window = shellaccess::windowOf(this);
    if (!window)
        return QStringLiteral("mainWindow is nullptr");
    const QString message = localdocuments::closeOpenedDocument(*window, fileId)
                                ? QStringLiteral("close openedFile success")
                                : QStringLiteral("close openedFile faile");
    bringPageBack(m_page, *window, fileId);
    Q_EMIT sig_closeCooperationResult(fileId, false);
    Q_EMIT sig_shareDlgReady({{QStringLiteral("fileId"), fileId}});
    return message;
}

void NHelioCloudDocsAsynJsObj::getOpenCooperationResult(NxWebViewJSContext& context)
{
    context.reply()["callstatus"] = "ok";
    context.reply()["result"] = m_openCooperationResult;
}
