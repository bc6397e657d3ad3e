#include "nheliostat/framework/ShellCloudFilesMgr.h"

#include "nheliostat/NHelioSubPage.h"
#include "nheliostat/documents/LocalDocumentPage.h"
#include "nheliostat/framework/ShellApplication.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellMainWindow.h"
#include "nheliostat/framework/ShellPageMoves.h"
#include "nheliostat/framework/ShellTabBar.h"
#include "zeolite/NxLoggerLite.h"

namespace {

constexpr QSize usualWindowSize(1280, 800);

void bringToFront(NHelioAppPage& page, NHelioMainWindow& window)
{
    if (NHelioSubPage* subPage = page.initialSubPage())
        subPage->activate({}, true);
    window.showToFront(true, true, false);
}

} // namespace

void ShellCloudFilesMgr::downloadAndOpen(const QVariantMap& parameters, NHelioMainWindow* givenWindow)
{
    const LocalDocumentRequest request = LocalDocumentRequest::fromParameters(parameters);
    ShellMainWindow* window = windowFor(givenWindow);
    const ShellCentralArea::Vacancy vacancy =
        request.newTab ? ShellCentralArea::Vacancy() : window->area().takeVacancy();

    QPointer<LocalDocumentPage> page = request.newTab ? nullptr : openPageOf(request);
    const bool isNew = !page;
    if (isNew)
        page = qobject_cast<LocalDocumentPage*>(window->area().addPage(LocalDocumentPage::type, {}, {}));
    if (!page) {
        NxLoggerLite::writeError(QStringLiteral("nheliostat"),
                                 QStringLiteral("no page for the file \"%1\"").arg(request.fileId));
        if (vacancy.page)
            window->area().addPage(vacancy.page);
        return;
    }
    if (vacancy.page) {
        if (isNew)
            window->tabs().moveTab(page, vacancy.index);
        m_shell.pageMoves().keepAside(vacancy.page, *window, vacancy.index, page);
    }
    if (isNew || page->state() == LocalDocumentPage::State::Failed)
        page->open(request);
    if (NHelioMainWindow* holder = m_shell.findRelativeHelioMainWindow(page))
        bringToFront(*page, *holder);
}

LocalDocumentPage* ShellCloudFilesMgr::openPageOf(const LocalDocumentRequest& request) const
{
    const QMap<QString, QString> name{{QStringLiteral("fileId"), request.fileId},
                                      {QStringLiteral("historyid"), request.historyId}};
    const QVector<NHelioMainWindow*> windows = m_shell.mainWindows();
    for (const NHelioMainWindow* window : windows) {
        const QVector<NHelioAppPage*> pages = window->centralArea()->pages();
        for (NHelioAppPage* page : pages) {
            auto* document = qobject_cast<LocalDocumentPage*>(page);
            if (document && document->findSubPage(name, true))
                return document;
        }
    }
    return nullptr;
}

ShellMainWindow* ShellCloudFilesMgr::windowFor(NHelioMainWindow* givenWindow) const
{
    if (auto* given = qobject_cast<ShellMainWindow*>(givenWindow))
        return given;
    const QVector<NHelioMainWindow*> windows = m_shell.mainWindows();
    if (!windows.isEmpty())
        return static_cast<ShellMainWindow*>(windows.first());
    ShellMainWindow* window = m_shell.openMainWindow();
    window->resize(usualWindowSize);
    return window;
}
