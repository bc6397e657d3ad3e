#include "page/NHelioCloudDocsPage.h"

#include "base/NClock.h"
#include "base/NDocsLog.h"
#include "base/NDomains.h"
#include "base/NReadOnce.h"
#include "bridge/CloudDocsPages.h"
#include "bridge/NHelioCloudDocsAsynJsObj.h"
#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioMainWindow.h"
#include "nrt/NSettings.h"
#include "nrt/product.h"
#include "offline/NDOPResourceManager.h"
#include "page/DocsUrl.h"
#include "page/OpenFilesParams.h"
#include "proxy/NConfigCentreValues.h"
#include "proxy/NDOPConfig.h"
#include "proxy/NVersionCheckCache.h"
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

bool isDarkSkin()
{
    const NHelioApplication* application = NHelioApplication::instance();
    const NHelioSkin* skin = application ? application->helioSkin() : nullptr;
    return skin && skin->isDark();
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
    const QString oldUrl = m_notify_URL;
    normalizeUrl(commandUrlOf(text));
    NDocsOfflinePage::NDOPResourceManager::instance()->loadLocalResources(m_fileId, m_officeType);
    if (isHttpUrl(text))
        m_showToolBar = true;
    if (!m_browser || !browserCreator()->isCreateSucceeded())
        return;

    if (isSameText(text, "lock") && isLockPath(m_browser->currentUrl()))
        return;
    if (m_showToolBar)
        applyToolBarVisible();
    if (m_notify_URL == oldUrl || m_waitingForVcs)
        return;
    if (_isDelayLoadUrl()) {
        _delayLoadUrl();
        return;
    }
    showUrl();
    ndocslog::info(QStringLiteral("load url: %1").arg(m_notify_URL), "NHelioCloudDocsPage::notify");
}

QString NHelioCloudDocsPage::commandUrlOf(const QString& text)
{
    if (text.startsWith(QLatin1String("http"), Qt::CaseInsensitive))
        return text;
    const bool intranet = nrt::kcmc::support(QStringLiteral("IntranetVersion"));
    m_serviceOrigin = ndomains::url(intranet ? QStringLiteral("drive") : QStringLiteral("quill_api_spec"));
    return docsurl::commandUrl(text, {m_serviceOrigin, nrt::product::applicationVersion(),
                                      nrt::product::applicationName(), nrt::product::distributionChannel(),
                                      nclock::nowMs()});
}

void NHelioCloudDocsPage::normalizeUrl(const QString& url)
{
    const auto& config = NDocsOfflinePage::NDOPConfig::instance();
    docsurl::NormalizeContext context;
    context.officeType = m_officeType;
    context.traceId = m_traceId;
    context.fileNameSuffix = QFileInfo(property("fileName").toString()).suffix();
    context.suffix = property("suffix").toString();
    context.darkSkin = isDarkSkin();
    context.officeTypeOfSuffix = [&config](const QString& suffix) { return config.officeTypeCode(suffix); };
    context.recordedOfficeType = &nversioncheckcache::get;
    context.isClientProxy = [&config](const QString& officeType) { return config.isDopEnabled(officeType); };
    context.makeTraceId = &docsurl::newIdentifier;

    const docsurl::Normalized normalized = docsurl::normalize(url, context);
    m_officeType = normalized.officeType;
    m_traceId = normalized.traceId;
    m_notify_URL = normalized.url;

    if (m_officeType.isEmpty()) {
        _startVcsRequest();
    } else if (normalized.clientProxy) {
        if (m_networkRequestStarted) {
            m_notify_URL =
                docsurl::withQueryItem(m_notify_URL, QStringLiteral("sdkversion"), QStringLiteral("3.0.7"));
        }
        _startNetworkRequest();
        _waitStartedPreRequest();
    }
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
        found = m_notify_URL;
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
    return m_notify_URL;
}

QString NHelioCloudDocsPage::startupUrl() const
{
    return m_browser ? m_browser->property("startupUrl").toString() : QString();
}

QString NHelioCloudDocsPage::getCurrentUrl() const
{
    if (m_preloadFrameworkUsed)
        return m_notify_URL;
    return m_browser ? m_browser->currentUrl() : QString();
}

QString NHelioCloudDocsPage::getWorkAreaRecoverUrl() const
{
    if (m_recoverContext.items.isEmpty())
        return getCurrentUrl();
    return m_recoverContext.items.first().params.value(QStringLiteral("url")).toString();
}

QString NHelioCloudDocsPage::getPageProperty(const QString& key) const
{
    return m_webFileInfo.value(key);
}

void NHelioCloudDocsPage::navigateTo(const QString& url)
{
    normalizeUrl(url);
    if (m_browser && browserCreator()->isCreateSucceeded())
        m_browser->navigate(m_notify_URL);
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
