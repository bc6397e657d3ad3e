#include "bridge/CloudDocsPages.h"

#include "base/NDocsLog.h"
#include "bridge/DocsLinks.h"
#include "bridge/ShellAccess.h"
#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/NHelioSubPage.h"

#include <QFileInfo>
#include <QUrl>

namespace clouddocspages {
namespace {

constexpr auto findOperation = "`anonymous-namespace'::findExistingCloudDocsPage";

bool isUnusedPrecreated(NHelioAppPage* page)
{
    return page->property("is_unuse_precreated").toBool() && page->property("File_ID").toString().isEmpty();
}

bool showsFile(NHelioAppPage* page, const QString& fileId, const QString& srcFrom)
{
    const QString shown = page->property("File_ID").toString();
    return page->widgetType() == previewPageType && !shown.isEmpty() && shown == fileId &&
           (srcFrom.isEmpty() || page->property("File_SrcFrom").toString() == srcFrom);
}

void openInPage(NHelioAppPage* page)
{
    page->newDocument(QString(), {}, NHelioProxyStrategy::Direct, nullptr, {});
}

void bringToFront(NHelioCentralArea* centralArea, NHelioAppPage* page, bool refresh)
{
    centralArea->setCurrentPage(page);
    NHelioSubPage* subPage = page->initialSubPage();
    if (subPage)
        subPage->activate(QString(), true);
    else
        openInPage(page);
    if (NHelioMainWindow* window = shellaccess::windowOf(centralArea))
        window->showToFront(true, true, false);
    if (refresh && subPage)
        QMetaObject::invokeMethod(subPage->page(), "refresh", Qt::QueuedConnection);
}

} // namespace

NHelioAppPage* findExistingCloudDocsPage(NHelioCentralArea* centralArea, const QString& id)
{
    const QVector<NHelioAppPage*> pages = centralArea->pages();
    for (NHelioAppPage* page : pages) {
        if (page->widgetType() != previewPageType)
            continue;
        if (!id.isEmpty() && page->property("precreated_page_id").toString() == id) {
            ndocslog::info(QStringLiteral("findExistingCloudDocsPage precreated_page_id: %1").arg(id),
                           findOperation);
            return page;
        }
        if (isUnusedPrecreated(page)) {
            page->setProperty("is_unuse_precreated", false);
            ndocslog::info(QStringLiteral("findExistingCloudDocsPage is_precreated_unuse"), findOperation);
            return page;
        }
    }
    return nullptr;
}

bool activatePreviewPage(NHelioCentralArea* centralArea, const QString& fileId, const QString& srcFrom,
                         bool refresh)
{
    if (!centralArea) {
        const NHelioApplication* application = NHelioApplication::instance();
        const QVector<NHelioMainWindow*> windows =
            application ? application->mainWindows() : QVector<NHelioMainWindow*>();
        return std::any_of(windows.begin(), windows.end(), [&](NHelioMainWindow* window) {
            return window->isVisible() && window->centralArea() &&
                   activatePreviewPage(window->centralArea(), fileId, srcFrom, refresh);
        });
    }

    const QVector<NHelioAppPage*> pages = centralArea->pages();
    const auto found = std::find_if(pages.begin(), pages.end(),
                                    [&](NHelioAppPage* page) { return showsFile(page, fileId, srcFrom); });
    if (found == pages.end())
        return false;
    bringToFront(centralArea, *found, refresh);
    return true;
}

void openCloudDocument(const QString& openUrl, const QString& suffix, const QString& fileId,
                       NHelioCentralArea* centralArea, const QString& documentUrl, bool showToolbar,
                       const QString& fileName, const QVariantMap& info)
{
    if (!centralArea)
        return;
    NHelioAppPage* page = findExistingCloudDocsPage(centralArea, fileId);
    if (!page)
        page = centralArea->addPage(previewPageType, QString(), {});
    if (!page)
        return;
    page->setProperty("fileName", fileName);
    page->setProperty("info", info);
    loadPreviewPage(page, openUrl, suffix, fileId, QString(), documentUrl, showToolbar, true);
}

bool loadPreviewPage(NHelioAppPage* page, const QString& openUrl, const QString& suffix,
                     const QString& fileId, const QString& fileName, const QString& url, bool showToolbar,
                     bool activate)
{
    if (!page)
        return false;
    QString target = openUrl.isEmpty() ? url : openUrl;
    if (target.isEmpty() && !fileId.isEmpty())
        target = docslinks::documentUrl(fileId);
    const QUrl parsed(target);
    if (!parsed.isValid() || parsed.host().isEmpty())
        return false;

    if (auto* preview = dynamic_cast<ICloudDocsPreviewPage*>(page); preview && !suffix.isEmpty()) {
        preview->setSuffix(suffix);
        if (!fileName.isEmpty()) {
            const QFileInfo file(fileName);
            page->setProperty("fileName", file.fileName());
            preview->setDocumentTitle(file.baseName());
        }
    }
    page->notify(target);
    if (!showToolbar)
        page->notify(QStringLiteral("setToolBar=0"));

    NHelioCentralArea* centralArea = shellaccess::centralAreaOf(page);
    if (activate) {
        if (centralArea)
            centralArea->setCurrentPage(page);
        openInPage(page);
    } else {
        if (centralArea)
            page->resize(centralArea->size());
        page->load();
    }

    if (fileId != QLatin1String("-1")) {
        page->setProperty("File_ID", fileId);
        page->setProperty("File_Url", openUrl);
    }
    return true;
}

} // namespace clouddocspages
