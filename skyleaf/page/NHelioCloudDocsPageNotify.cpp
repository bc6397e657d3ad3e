#include "page/NHelioCloudDocsPage.h"

#include "base/NClock.h"
#include "base/NDocsLog.h"
#include "base/NDomains.h"
#include "base/NReadOnce.h"
#include "bridge/CloudDocsPages.h"
#include "bridge/NHelioCloudDocsAsynJsObj.h"
#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/NHelioMainWindow.h"
#include "nrt/NSettings.h"
#include "nrt/product.h"
#include "offline/NDOPResourceManager.h"
#include "page/DocsUrl.h"
#include "page/OpenFilesParams.h"
#include "proxy/NConfigCentreValues.h"
#include "proxy/NDOPConfig.h"
#include "zeolite/JsonHelper.h"

#include <QFileInfo>

// What the shell tells the page to show: notify texts, open parameters and the URLs made from them.

namespace {

bool readToolBarAllowed()
{
    nrt::NSettings settings(QStringLiteral("Maravel"), QStringLiteral("Office"));
    settings.beginGroup(QStringLiteral("6.0"));
    settings.beginGroup(QStringLiteral("vltoffice"));
    settings.beginGroup(QStringLiteral("skyleaf"));
    return settings.value(QStringLiteral("AllowCloudDocsPageShowToolbar"), true).toBool();
}

bool isToolBarAllowed()
{
    static NReadOnce<bool> allowed(&readToolBarAllowed);
    return allowed();
}

bool isSameText(const QString& text, const char* other)
{
    return text.compare(QLatin1String(other), Qt::CaseInsensitive) == 0;
}

bool isHttpUrl(const QString& text)
{
    return text.startsWith(QLatin1String("http://"), Qt::CaseInsensitive) ||
           text.startsWith(QLatin1String("https://"), Qt::CaseInsensitive);
}

bool isLockPath(const QString& url)
{
    const QString path = QUrl(url).path();
    return path.startsWith(QLatin1String("/lock")) || path.startsWith(QLatin1String("/secret"));
}

} // namespace

void NHelioCloudDocsPage::notify(const QString& text)
{
    if (_isFilterShareDefaultPage(text))
        return;
    if (isSameText(text, "openCooperationFinish")) {
        if (m_jsObj)
            m_jsObj->setOpenCooperationResult(property("openCooperationFinish").toBool());
        return;
    }
    if (handleToolBarCommand(text) || handleJsonCommand(text))
        return;
    handleUrlOrCommand(text);
}

bool NHelioCloudDocsPage::_isFilterShareDefaultPage(const QString& text)
{
    if (text.compare(ndomains::url(QStringLiteral("quill")), Qt::CaseInsensitive) != 0 ||
        !property("sharePreloadFinish").toBool()) {
        return false;
    }
    ndocslog::info(QStringLiteral("sharePreloadFinish already finish"),
                   "NHelioCloudDocsPage::_isFilterShareDefaultPage");
    setProperty("sharePreloadFinish", false);
    return true;
}

bool NHelioCloudDocsPage::handleToolBarCommand(const QString& text)
{
    const QString prefix = QStringLiteral("setToolBar=");
    if (!text.startsWith(prefix, Qt::CaseInsensitive))
        return false;
    m_showToolBar = text.mid(prefix.size()).toInt() > 0;
    m_toolBarVisible = m_showToolBar;
    applyToolBarVisible();
    return true;
}

void NHelioCloudDocsPage::applyToolBarVisible()
{
    if (m_browser)
        m_browser->setToolbarVisible(isToolBarAllowed() && m_showToolBar);
}

bool NHelioCloudDocsPage::handleJsonCommand(const QString& text)
{
    if (!text.trimmed().startsWith(QLatin1Char('{')))
        return false;
    const QJsonObject command = JsonHelper::convertStringToQJson(text);
    const QJsonObject params = command.value(QLatin1String("params")).toObject();
    if (!isSameText(command.value(QLatin1String("action")).toString(), "preInit") || params.isEmpty())
        return false;
    _preInit(params);
    return true;
}

void NHelioCloudDocsPage::handleUrlOrCommand(const QString& text)
{
    // The lock page is shown already.
    if (hasBrowser() && isSameText(text, "lock") && isLockPath(m_browser->currentUrl()))
        return;
    const bool isNew = tell(commandUrlOf(text), LoadReason::Told);
    NDocsOfflinePage::NDOPResourceManager::instance()->loadLocalResources(m_load->fileId(),
                                                                          m_load->officeType());
    if (isHttpUrl(text))
        m_showToolBar = true;
    if (!hasBrowser())
        return;
    if (m_showToolBar)
        applyToolBarVisible();
    if (isNew)
        m_load->showForNotify();
}

QString NHelioCloudDocsPage::commandUrlOf(const QString& text) const
{
    if (text.startsWith(QLatin1String("http"), Qt::CaseInsensitive))
        return text;
    const bool intranet = nrt::kcmc::support(QStringLiteral("IntranetVersion"));
    const QString origin =
        ndomains::url(intranet ? QStringLiteral("drive") : QStringLiteral("quill_api_spec"));
    return docsurl::commandUrl(text,
                               {origin, nrt::product::applicationVersion(), nrt::product::applicationName(),
                                nrt::product::distributionChannel(), nclock::nowMs()});
}

bool NHelioCloudDocsPage::openFiles(const QStringList& args, const QStringList& names,
                                    NHelioProxyStrategy strategy, NHelioSubPage* subPage,
                                    const QVariantMap& extra)
{
    Q_UNUSED(names)
    Q_UNUSED(strategy)
    Q_UNUSED(subPage)
    QString found = findUrlArgument(args);
    if (found.isEmpty())
        found = m_load->url();
    NHelioMainWindow* window = mainWindow();
    NHelioCentralArea* centralArea = window ? window->centralArea() : nullptr;
    if (found.isEmpty() || !centralArea)
        return false;

    const OpenFilesParams params = parseOpenFilesParams(found);
    setProperty("fileName", params.fileName);
    if (!QUrl(params.url).host().isEmpty())
        openFoundDocument(params, centralArea, extra);

    if (params.downloadProhibited) {
        const NHelioApplication* application = NHelioApplication::instance();
        if (NHelioCloudCollectInfoMgr* collector =
                application ? application->getCloudCollectInfoMgr() : nullptr)
            collector->reportDownloadProhibited();
    }
    return true;
}

void NHelioCloudDocsPage::openFoundDocument(const OpenFilesParams& params, NHelioCentralArea* centralArea,
                                            const QVariantMap& extra)
{
    const auto openHere = [&](const QString& url) {
        clouddocspages::openCloudDocument(url, params.suffix, params.fileId, centralArea, QString(),
                                          params.showToolBar, params.fileName, extra);
    };
    if (params.fileId.isEmpty()) {
        if (nrt::product::getFuncSwitchState(QStringLiteral("cloudDocsContainerUnified"), false))
            openHere(params.url);
        else
            centralArea->addBrowserPage(params.foundUrl);
        return;
    }

    QString url = params.url;
    const EntryMarker marker = findEntryMarker(url);
    if (marker.position >= 0)
        url.replace(marker.position, marker.length, ndomains::url(marker.key));

    if (!params.newPage && params.fileId != QLatin1String("-1") &&
        clouddocspages::activatePreviewPage(nullptr, params.fileId, params.from, true)) {
        return;
    }
    const QVariantMap map{{QStringLiteral("url"), url},
                          {QStringLiteral("suffix"), params.suffix},
                          {QStringLiteral("fileId"), params.fileId},
                          {QStringLiteral("fileName"), params.fileName}};
    QVariant result;
    if (nconfigvalues::isSyncAssistOn() ||
        !helioBrowserModuleCallProxy(QStringLiteral("openFileWithQuillDrive"), map, &result)) {
        openHere(url);
    }
}

QString NHelioCloudDocsPage::notifyUrl() const
{
    return m_load->url();
}

QString NHelioCloudDocsPage::startupUrl() const
{
    return m_browser ? m_browser->property("startupUrl").toString() : QString();
}

QString NHelioCloudDocsPage::getCurrentUrl() const
{
    return m_takeOver.isUsed() ? m_load->url() : browserUrl();
}

QString NHelioCloudDocsPage::getWorkAreaRecoverUrl() const
{
    if (m_recoverContext.items.isEmpty())
        return getCurrentUrl();
    return m_recoverContext.items.first().params.value(QStringLiteral("url")).toString();
}

QString NHelioCloudDocsPage::getPageProperty(const QString& key) const
{
    return m_load->webFileInfo().value(key);
}

void NHelioCloudDocsPage::navigateTo(const QString& url)
{
    tell(url, LoadReason::Told);
    if (hasBrowser())
        m_load->navigate();
}

void NHelioCloudDocsPage::refreshPage()
{
    if (m_browser)
        m_browser->reload();
}

void NHelioCloudDocsPage::refresh()
{
    refreshPage();
}

void NHelioCloudDocsPage::addToStartupPage()
{
    if (m_browser)
        m_browser->addToStartupPages(m_browser->currentUrl(), m_browser->title());
}

void NHelioCloudDocsPage::notifyRenameFinish(const QString& name)
{
    Q_EMIT sigNotifyNameChange(name);
}
