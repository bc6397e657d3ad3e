#include "page/NxCloudDocsSubPage.h"

#include "base/NDocsLog.h"
#include "bridge/DocsLinks.h"
#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioBrowserMenu.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/NHelioCloudSvrProxy.h"
#include "nheliostat/NHelioTabMenu.h"
#include "page/DocsUrl.h"
#include "page/NHelioCloudDocsPage.h"
#include "page/NxCloudDocsTabDelegate.h"

#include <QUrl>

namespace {

constexpr auto attachOperation = "NxCloudDocsSubPage::doAttachContextMenuActions";
constexpr auto pinOperation = "NxCloudDocsSubPage::onPinToQuickAccess";

/** What an invokable method of the page answers, without the items that belong to one open. */
QString urlFrom(NHelioPage* page, const char* method)
{
    QString url;
    QMetaObject::invokeMethod(page, method, Q_RETURN_ARG(QString, url));
    return docsurl::withoutOpenTimeItems(url);
}

QString withoutQuery(const QString& text)
{
    QUrl url(text);
    if (!url.hasQuery())
        return text;
    url.setQuery(QString());
    return url.toString(QUrl::FullyEncoded);
}

QString pinCommand(const QString& fileId, const QString& title)
{
    const QString separator = QStringLiteral(">_<");
    const QStringList document{fileId, QString(), QString::fromLatin1(title.toUtf8().toBase64())};
    return QStringLiteral("pinToQuickAccess&activate&tab_menu&cloudFile&%1&%2")
        .arg(separator, document.join(separator));
}

void logEmptyUrl(const char* operation)
{
    ndocslog::info(QStringLiteral("%1: empty url").arg(QLatin1String(operation)), operation);
}

} // namespace

NxCloudDocsSubPage::NxCloudDocsSubPage(NHelioSubPages* subPages, NHelioBrowserWidgetBase* browser)
    : NHelioSubPage(subPages)
    , m_browser(browser)
    , m_menu(NHelioBrowserMenuMgrIns::instantce()->createMenu(this, browser))
{
}

NHelioCloudDocsPage* NxCloudDocsSubPage::docsPage() const
{
    return qobject_cast<NHelioCloudDocsPage*>(page());
}

void NxCloudDocsSubPage::activate(const QString& name, bool flag)
{
    NHelioTabAssistant* assistant = tabAssistant();
    if (assistant && assistant->currentSubPage() && assistant->currentSubPage() != this)
        assistant->activate(this);
    else
        NHelioSubPage::activate(name, flag);
}

bool NxCloudDocsSubPage::isDiscardable() const
{
    return !m_browser || m_browser->isDiscardable();
}

NHelioTabDelegate* NxCloudDocsSubPage::createTabDelegate(QObject* parent)
{
    auto* delegate = new NxCloudDocsTabDelegate(parent, m_browser, page());
    connect(this, &NxCloudDocsSubPage::sigBrowserCreateSucceeded, delegate,
            &NxCloudDocsTabDelegate::onSetBrowser);
    return delegate;
}

void NxCloudDocsSubPage::onBrowserCreateSucceeded(NHelioBrowserWidgetBase* browser)
{
    if (m_browser || !browser)
        return;
    m_browser = browser;
    m_menu->setBrowser(browser);
    Q_EMIT sigBrowserCreateSucceeded(browser);
}

void NxCloudDocsSubPage::onRefreshAction()
{
    if (m_browser)
        m_browser->reload();
}

void NxCloudDocsSubPage::onWebFileReady(const QMap<QString, QString>& info)
{
    m_menu->setWebFileInfo(info);
}

void NxCloudDocsSubPage::onMenuItemDataReady(const QJsonObject& data)
{
    m_menu->setMenuItemData(data, [this](NHelioTab*, const QString& id, const QJsonValue& value) {
        if (NHelioCloudDocsPage* shown = docsPage())
            shown->notifyMenuItem(id, value);
    });
}

void NxCloudDocsSubPage::doAttachContextMenuActions(QMenu* menu)
{
    NHelioCloudDocsPage* shown = docsPage();
    if (!menu || !shown)
        return;
    const QString currentUrl = urlFrom(shown, "getCurrentUrl");
    // Before a recovered page is loaded its document is known, but nothing can be done with it yet.
    if (currentUrl.isEmpty() && urlFrom(shown, "getWorkAreaRecoverUrl").isEmpty())
        return logEmptyUrl(attachOperation);
    auto* tabMenu = qobject_cast<NHelioTabMenu*>(menu);
    if (!tabMenu)
        return;
    if (!currentUrl.isEmpty() && m_menu->browser()) {
        m_menu->addActions(currentUrl, NHelioMenuPlace::Tab, NHelioMenuSubject::Document,
                           NHelioMenuForm::Entries, [this](const QString& action) { onMenuAction(action); });
        m_menu->attachActions(tabMenu, QStringLiteral("NHelioBrowserSubPage"));
    }
    tabMenu->addSeparator();
    tabMenu->addFixAction();
    if (supportsStandaloneWindow())
        tabMenu->addWindowActions();
    if (isClosable())
        tabMenu->addCloseAction();
    tabMenu->addCloseOthersAction();
}

void NxCloudDocsSubPage::onMenuAction(const QString& action)
{
    if (action == QLatin1String("refresh"))
        onRefreshAction();
    else if (action == QLatin1String("pin2quickaccess"))
        onPinToQuickAccess();
}

void NxCloudDocsSubPage::onPinToQuickAccess()
{
    const NHelioApplication* application = NHelioApplication::instance();
    NHelioCloudCollectInfoMgr* collector = application ? application->getCloudCollectInfoMgr() : nullptr;
    if (collector)
        collector->reportTabMenuClick(QStringLiteral("pin2quickaccess"), this);
    NHelioCloudDocsPage* shown = docsPage();
    if (!shown)
        return;
    const QString url = withoutQuery(urlFrom(shown, "getCurrentUrl"));
    if (url.isEmpty())
        return logEmptyUrl(pinOperation);
    NHelioCloudSvrProxy* proxy = application ? application->cloudSvrProxy() : nullptr;
    if (!proxy)
        return;
    QString fileId = shown->property("File_ID").toString();
    if (fileId.isEmpty())
        fileId = docslinks::fileIdFromDocsUrl(url);
    ndocslog::info(QStringLiteral("%1: with url %2, fileId:%3").arg(QLatin1String(pinOperation), url, fileId),
                   pinOperation);
    proxy->sendDialogCommand(pinCommand(fileId, shown->pageTitle()), proxy->tavaDlgObjIdentifier(), this);
}

bool NxCloudDocsSubPage::getWorkAreaRecoverItem(NHelioWorkAreaRecoverItem* item)
{
    if (!page())
        return false;
    const QString url = urlFrom(page(), "getWorkAreaRecoverUrl");
    ndocslog::info(QStringLiteral("getWorkAreaRecoverItem %1").arg(url),
                   "NxCloudDocsSubPage::getWorkAreaRecoverItem");
    if (url.isEmpty() || url.compare(QLatin1String("about:blank"), Qt::CaseInsensitive) == 0)
        return false;
    if (!NHelioSubPage::getWorkAreaRecoverItem(item))
        return false;
    const NHelioCloudDocsPage* shown = docsPage();
    item->params.insert(QStringLiteral("url"), url);
    item->params.insert(QStringLiteral("toolBarVisible"), shown && shown->isToolBarVisible());
    item->params.insert(QStringLiteral("fileId"), page()->property("File_ID").toString());
    const QString fileName = page()->property("fileName").toString();
    if (!fileName.isEmpty())
        item->params.insert(QStringLiteral("fileName"), fileName);
    item->suffix = page()->property("suffix").toString();
    return true;
}
