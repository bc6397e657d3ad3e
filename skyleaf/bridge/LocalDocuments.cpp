#include "bridge/LocalDocuments.h"

#include "bridge/ShellAccess.h"
#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/NHelioPage.h"
#include "nheliostat/NHelioSubPage.h"

#include <utility>

namespace localdocuments {
namespace {

/** The first open document of the file in a window, with its page. */
std::pair<NHelioVltPage*, NHelioSubPage*> find(const NHelioMainWindow& window, const QString& fileId)
{
    const NHelioCentralArea* centralArea = window.centralArea();
    if (!centralArea)
        return {};
    const QMap<QString, QString> parameters{{QStringLiteral("historyid"), QString()},
                                            {QStringLiteral("fileId"), fileId}};
    const QVector<NHelioAppPage*> pages = centralArea->pages();
    for (NHelioAppPage* page : pages) {
        auto* documents = qobject_cast<NHelioVltPage*>(page);
        if (!documents || documents->subPages()->isEmpty())
            continue;
        if (NHelioSubPage* subPage = documents->findSubPage(parameters))
            return {documents, subPage};
    }
    return {};
}

/** A page that stands in no window has no owner: it goes with the shell at the latest. */
void keepUntilQuit(NHelioApplication& application, NHelioAppPage* page)
{
    QObject::connect(&application, &NHelioApplication::aboutToQuit, page, [page] {
        if (!page->parent())
            page->deleteLater();
    });
}

} // namespace

bool activateOpenedDocument(const QString& fileId)
{
    const NHelioApplication* application = NHelioApplication::instance();
    if (!application || fileId.isEmpty())
        return false;
    const QVector<NHelioMainWindow*> windows = application->mainWindows();
    for (NHelioMainWindow* window : windows) {
        if (NHelioSubPage* subPage = find(*window, fileId).second) {
            subPage->activate(QString(), true);
            window->showToFront(true, true, false);
            return true;
        }
    }
    return false;
}

bool closeOpenedDocument(const NHelioMainWindow& window, const QString& fileId)
{
    const auto [page, subPage] = find(window, fileId);
    return subPage && page->closeSubPage(subPage);
}

bool openInCurrentTab(NHelioAppPage* page, const QVariantMap& parameters)
{
    NHelioApplication* application = NHelioApplication::instance();
    NHelioCloudFilesMgr* files = application ? application->cloudFilesMgr() : nullptr;
    NHelioMainWindow* window = shellaccess::windowOf(page);
    if (!files || !window)
        return false;

    constexpr int tabsMode = 0;
    constexpr int windowsMode = 1;
    const int mode = window->headerBar() ? window->headerBar()->mode() : tabsMode;
    if (mode == tabsMode) {
        NHelioTab* tab = shellaccess::tabOf(page, window);
        if (!tab)
            return false;
        tab->setAllowReAttachSubwindow(true);
        tab->reAttachSubPage(nullptr);
    } else if (mode != windowsMode) {
        return false;
    }
    if (NHelioCentralArea* centralArea = window->centralArea()) {
        centralArea->removePage(page);
        keepUntilQuit(*application, page);
    }
    files->downloadAndOpen(parameters, window);
    return true;
}

void downloadAndOpen(const QVariantMap& parameters)
{
    const NHelioApplication* application = NHelioApplication::instance();
    if (NHelioCloudFilesMgr* files = application ? application->cloudFilesMgr() : nullptr)
        files->downloadAndOpen(parameters, nullptr);
}

void recordOpenStep(const QString& fileId, const QString& step, quint64 epochMs)
{
    const NHelioApplication* application = NHelioApplication::instance();
    if (fileId.isEmpty() || step.isEmpty() || !application)
        return;
    auto* collector = application->property("CooperateInfoCollectCloudToLocal").value<QObject*>();
    if (collector) {
        QMetaObject::invokeMethod(collector, "recordStep", Q_ARG(QString, fileId), Q_ARG(QString, step),
                                  Q_ARG(quint64, epochMs));
    }
}

} // namespace localdocuments
