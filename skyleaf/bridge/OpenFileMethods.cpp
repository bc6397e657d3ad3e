#include "bridge/CloudDocsPages.h"
#include "bridge/DocsLinks.h"
#include "bridge/EntryTrace.h"
#include "bridge/LocalDocuments.h"
#include "bridge/NHelioCloudDocsAsynJsObj.h"
#include "bridge/OpenArguments.h"
#include "bridge/ShellAccess.h"

#include "base/NClock.h"
#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/NHelioPage.h"
#include "nrt/product.h"
#include "zeolite/NxLoggerLite.h"
#include "zeolite/NxWebViewJSContext.h"

#include <QFileInfo>
#include <QUrl>
#include <QUrlQuery>

// The script methods that open files and documents.

namespace {

// Widget types of the shell's process pages.
constexpr int flowPageType = 21;
constexpr int processPageType = 27;

void openInPage(NHelioAppPage* page)
{
    page->newDocument(QString(), {}, NHelioProxyStrategy::Direct, nullptr, {});
}

/** What an online document that a script asks for is opened with. */
struct OnlineFile
{
    QString url; //!< with the items that tell the web application how it was opened
    QString officeType;
    QString fileId;
    QString fileName;
};

QString officeTypeOf(const QString& url)
{
    return QUrlQuery(QUrl(url)).queryItemValue(QStringLiteral("officeType"));
}

/** Why a URL cannot be opened as an online document; empty when it can. */
QString onlineUrlError(const QString& url)
{
    if (url.isEmpty())
        return QStringLiteral("url isEmpty");
    if (QUrl(url).host().isEmpty())
        return QStringLiteral("url invalid");
    const bool hasOfficeType = QUrlQuery(QUrl(url)).hasQueryItem(QStringLiteral("officeType"));
    return hasOfficeType ? QString() : QStringLiteral("url query(officeType) isEmpty");
}

QString openedHybrid(const QString& url)
{
    return url + QStringLiteral("&localId=&openEnv=hybrid&startTime=%1&newFile=true&from=skyleaf-"
                                "openDocsOnlineFile")
                     .arg(nclock::nowMs());
}

void openInNewPage(const OnlineFile& file, NHelioAppPage* page, NHelioCentralArea* centralArea)
{
    page->setProperty("fileName", file.fileName);
    page->notify(QStringLiteral("suffix:") + file.officeType);
    page->notify(file.url);
    centralArea->setCurrentPage(page);
    openInPage(page);
    if (file.fileId != QLatin1String("-1"))
        page->setProperty("File_ID", file.fileId);
}

} // namespace

void NHelioCloudDocsAsynJsObj::openFile(NxWebViewJSContext& context)
{
    traceEntry("NHelioCloudDocsAsynJsObj::openFile", __LINE__);
    openFileImpl(OpenArguments::read(context));
    context.reply()["callstatus"] = "ok";
    context.reply()["result"] = true;
}

void NHelioCloudDocsAsynJsObj::openFileEx(NxWebViewJSContext& context)
{
    traceEntry("NHelioCloudDocsAsynJsObj::openFileEx", __LINE__);
    openFileImpl(OpenArguments::read(context));
    context.reply()["callstatus"] = "ok";
    context.reply()["result"] = true;
}

void NHelioCloudDocsAsynJsObj::openFileImpl(const OpenArguments& arguments)
{
    NxLoggerLite::writeInfo(QStringLiteral("NHelioCloudDocsAsynJsObj"), arguments.logText());
    localdocuments::recordOpenStep(arguments.fileId, QStringLiteral("openfilebegin"),
                                   static_cast<quint64>(nclock::nowMs()));
    shellaccess::reportOpenStart(arguments.sourceTag(), virtualTypeOf(arguments.openSrc));

    QVariantMap parameters = arguments.openParameters();
    if (nrt::product::getFuncSwitchState(QStringLiteral("SupportFileNotLand"), true) &&
        arguments.supportNoLand)
        parameters.insert(QStringLiteral("supportNoLand"), true);
    if (m_page && !m_page->property("File_ID").isNull())
        m_page->setProperty("File_ID", QString());

    if (!nrt::product::getFuncSwitchState(QStringLiteral("InheritCloudDocIndex"), true) ||
        !arguments.staysInTab()) {
        parameters.insert(QStringLiteral("isSaveAs"), true);
        localdocuments::downloadAndOpen(parameters);
        return;
    }
    if (!arguments.pageIdxInfo.isEmpty())
        parameters.insert(QStringLiteral("pageIdxInfo"), arguments.pageIdxInfo);
    if (localdocuments::activateOpenedDocument(arguments.fileId))
        return;
    NHelioCentralArea* centralArea = shellaccess::centralAreaOf(this);
    if (centralArea && clouddocspages::activatePreviewPage(centralArea, arguments.fileId, QString(), false))
        return;
    parameters.insert(QStringLiteral("isSwitch"), true);
    if (m_page)
        localdocuments::openInCurrentTab(m_page, parameters);
}

void NHelioCloudDocsAsynJsObj::openFileByCloud(NxWebViewJSContext& context)
{
    const OpenArguments arguments = OpenArguments::read(context);
    const QString openUrl = context.getValue(QStringLiteral("openUrl"), QString()).toString();
    shellaccess::reportOpenStart(arguments.sourceTag(), virtualTypeOf(arguments.openSrc));

    NHelioCentralArea* centralArea = shellaccess::centralAreaOf(this);
    if (!centralArea)
        return;
    if (arguments.fileId != QLatin1String("-1") &&
        clouddocspages::activatePreviewPage(centralArea, arguments.fileId, QString(), false))
        return;
    QString documentUrl;
    if (openUrl.isEmpty() && !arguments.fileId.isEmpty()) {
        documentUrl = docslinks::documentUrl(arguments.fileId) + QStringLiteral("?pcEnter=appcenter") +
                      QStringLiteral("&from=%1").arg(arguments.sourceTag());
    }
    clouddocspages::openCloudDocument(openUrl, QFileInfo(arguments.fileName).suffix(), arguments.fileId,
                                      centralArea, documentUrl, true, arguments.fileName, {});
}

void NHelioCloudDocsAsynJsObj::openDocsOnlineFile(NxWebViewJSContext& context)
{
    const QVariantMap arguments = parseContextArgs(context, true);
    if (arguments.isEmpty()) {
        setReplyStatus(context, false, QStringLiteral("args isEmpty"));
        return;
    }
    const QString url = arguments.value(QStringLiteral("url")).toString();
    const QString urlError = onlineUrlError(url);
    if (!urlError.isEmpty()) {
        setReplyStatus(context, false, urlError);
        return;
    }
    const OnlineFile file{openedHybrid(url), officeTypeOf(url),
                          arguments.value(QStringLiteral("fileId")).toString(),
                          arguments.value(QStringLiteral("fileName")).toString()};
    if (localdocuments::activateOpenedDocument(file.fileId)) {
        setReplyStatus(context, true, QString());
        return;
    }
    NHelioCentralArea* centralArea = shellaccess::centralAreaOf(this);
    NHelioAppPage* page = centralArea ? centralArea->addPage(previewPageType, QString(), {}) : nullptr;
    if (!page) {
        setReplyStatus(context, false, QStringLiteral("internal error"));
        return;
    }
    const QVariantMap driveFile{{QStringLiteral("url"), file.url},
                                {QStringLiteral("suffix"), file.officeType},
                                {QStringLiteral("fileId"), file.fileId},
                                {QStringLiteral("fileName"), file.fileName}};
    if (!helioBrowserModuleCallProxy(QStringLiteral("openFileWithQuillDrive"), driveFile, nullptr))
        openInNewPage(file, page, centralArea);
    setReplyStatus(context, true, QString());
}

void NHelioCloudDocsAsynJsObj::openProcessOnFile(NxWebViewJSContext& context)
{
    const auto textOf = [&](const char* key) {
        return context.getValue(QLatin1String(key), QString()).toString();
    };
    const QString fileId = textOf("fileid");
    const int type =
        QFileInfo(textOf("fileName")).suffix() == QLatin1String("pom") ? flowPageType : processPageType;
    NHelioCentralArea* centralArea = fileId.isEmpty() ? nullptr : shellaccess::centralAreaOf(m_page);
    NHelioAppPage* page = centralArea ? centralArea->addPage(type, QString(), {}) : nullptr;
    if (page)
        page->openLocalFiles({fileId, textOf("groupid")}, {}, NHelioProxyStrategy::Direct, nullptr, {}, true);
    context.reply()["result"] = page != nullptr;
}

void NHelioCloudDocsAsynJsObj::openProcessOnPage(NxWebViewJSContext& context)
{
    const QString type = context.getValue(QStringLiteral("type"), QString()).toString();
    if (type.isEmpty())
        return;
    const QString groupId = context.getValue(QStringLiteral("groupid"), QString()).toString();
    const QString parentId = context.getValue(QStringLiteral("parentid"), QStringLiteral("0")).toString();
    NHelioCentralArea* centralArea = shellaccess::centralAreaOf(this);
    if (!centralArea)
        return;
    NHelioAppPage* page =
        centralArea->addPage(type == QLatin1String("flow") ? flowPageType : processPageType, QString(), {});
    if (!page)
        return;
    page->notify(QLatin1Char('&') + groupId + QLatin1Char('&') + parentId);
    centralArea->setCurrentPage(page);
    openInPage(page);
}

void NHelioCloudDocsAsynJsObj::onNotifyStopCollaboration(const QJsonObject& info)
{
    NHelioApplication* application = NHelioApplication::instance();
    NHelioMainWindow* window = shellaccess::windowOf(m_page);
    NHelioCloudSvrProxy* proxy = shellaccess::cloudService();
    if (!application || !proxy || !shellaccess::tabOf(m_page, window))
        return;
    const QString fileId = info.value(QLatin1String("fileId")).toString();
    if (m_page->property("File_ID").toString() != fileId)
        return;
    const QVariantMap parameters{
        {QStringLiteral("fileid"), fileId},
        {QStringLiteral("fileName"), info.value(QLatin1String("fileName")).toString()},
        {QStringLiteral("from"), QStringLiteral("nvltcloudmodule")}};
    const QPointer<NHelioAppPage> page = m_page;
    proxy->prepareToggleModeLoadingMask(application->widget(), [page, parameters] {
        if (page)
            localdocuments::openInCurrentTab(page, parameters);
    });
}
