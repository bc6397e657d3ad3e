#include "shell/pages/PageOpener.h"

#include "shell/pages/PageDirectory.h"

#include "nheliostat/NHelioBrowserPageRoot.h"
#include "nheliostat/NHelioBrowserWidgetBase.h"
#include "nheliostat/NHelioMainWindow.h"
#include "nheliostat/framework/ShellApplication.h"
#include "nheliostat/framework/ShellMainWindow.h"

#include <QPointer>
#include <QUrl>

namespace shell {

namespace {

constexpr int chromiumBrowserType = 2;

/** Pages of a factory have no browser of their own; it arrives at a later turn of the event loop. */
void giveBrowser(NHelioAppPage* page)
{
    auto* const root = qobject_cast<NHelioBrowserPageRoot*>(page);
    if (root && !root->browserCreator()->isCreateSucceeded())
        CreateHelioBrowserWidget(root, root->browserCreator(), chromiumBrowserType, QString(),
                                 QStringLiteral("hyperlink"), 0);
}

} // namespace

PageOpener::PageOpener(ShellApplication& application, PageDirectory& pages, QObject* parent)
    : QObject(parent)
    , m_application(application)
    , m_pages(pages)
{
    m_application.setNewPageHandler(
        [this](ShellMainWindow& window) { openDocumentsPage(window, QString()); });
}

void PageOpener::openDocumentsPage(ShellMainWindow& window, const QString& text)
{
    if (NHelioAppPage* page = m_application.openDocumentsPage(window, text))
        m_pages.markLoadAsked(page);
}

void PageOpener::openForBrowser(NHelioBrowserWidgetBase* opener, IHelioBrowserPageFactory* factory,
                                const QUrl& url)
{
    NHelioMainWindow* window = m_application.findRelativeHelioMainWindow(opener);
    const QPointer<NHelioAppPage> page = window && factory ? factory->createPage() : nullptr;
    if (!page)
        return m_application.openUrl(url.toString(), opener);

    m_application.collectInfo().markOpenStarted();
    window->centralArea()->addPage(page);
    if (page)
        page->notify(url.toString(QUrl::FullyEncoded));
    if (page)
        window->centralArea()->setCurrentPage(page);
    if (!page)
        return;
    m_pages.markLoadAsked(page);
    page->load();
    giveBrowser(page);
}

} // namespace shell
