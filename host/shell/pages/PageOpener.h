#pragma once

#include "shell/pages/ProcessPage.h"
#include "shell/pages/ProcessPageItem.h"

#include <QObject>
#include <QString>

class IHelioBrowserPageFactory;
class NHelioBrowserWidgetBase;
class QUrl;
class ShellApplication;
class ShellMainWindow;

namespace shell {

class PageDirectory;

/**
 * Opens pages in the shell's windows: the first one, those the user asks for and those that a browser asks
 * for. The shell's own page types are registered while it lives.
 */
class PageOpener final : public QObject
{
    Q_OBJECT
public:
    PageOpener(ShellApplication& application, PageDirectory& pages, QObject* parent = nullptr);

    /** A documents page that shows what the text says; an empty text shows the service's start page. */
    void openDocumentsPage(ShellMainWindow& window, const QString& text);
    /**
     * A page for a link that `opener` opens in a new page, in the same window: made by the factory, or a
     * plain browser page when that is null or makes none.
     */
    void openForBrowser(NHelioBrowserWidgetBase* opener, IHelioBrowserPageFactory* factory, const QUrl& url);

private:
    ShellApplication& m_application;
    PageDirectory& m_pages;
    ProcessPageItem m_flowPages{ProcessPage::flowType};
    ProcessPageItem m_processPages{ProcessPage::processType};
};

} // namespace shell
