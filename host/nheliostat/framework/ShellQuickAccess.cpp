#include "nheliostat/framework/ShellQuickAccess.h"

#include "nheliostat/NHelioSubPage.h"
#include "nheliostat/framework/QuickAccessPopup.h"
#include "nheliostat/framework/ShellApplication.h"
#include "nheliostat/framework/ShellCentralArea.h"
#include "nheliostat/framework/ShellHeaderBar.h"
#include "nheliostat/framework/ShellLook.h"
#include "nheliostat/framework/ShellMainWindow.h"
#include "zeolite/NxLoggerLite.h"

#include <QAction>
#include <QFileInfo>
#include <QUrl>

namespace {

const QString logTag = QStringLiteral("nheliostat");

/** The suffix of the file that a page shows, as far as the page knows it. */
QString suffixOf(const NHelioSubPage* subPage)
{
    NHelioPage* page = subPage ? subPage->page() : nullptr;
    if (!page)
        return {};
    const QString suffix = page->property("suffix").toString();
    if (!suffix.isEmpty())
        return suffix;
    QString fileName = page->property("fileName").toString();
    QString fileType;
    if (page->metaObject()->indexOfMethod("getPageProperty(QString)") >= 0) {
        const auto ask = [page](const QString& key, QString& answer) {
            QMetaObject::invokeMethod(page, "getPageProperty", Q_RETURN_ARG(QString, answer),
                                      Q_ARG(QString, key));
        };
        if (fileName.isEmpty())
            ask(QStringLiteral("fileName"), fileName);
        ask(QStringLiteral("fileType"), fileType);
    }
    const QString ofName = QFileInfo(fileName).suffix();
    return ofName.isEmpty() ? fileType : ofName;
}

} // namespace

ShellQuickAccess::ShellQuickAccess(ShellApplication& application, const QString& path,
                                   const QString& documentsSite)
    : m_application(application)
    , m_list(path)
    , m_documentsSite(documentsSite)
{
}

void ShellQuickAccess::addTo(ShellMainWindow& window)
{
    auto* popup = new QuickAccessPopup(m_list, &window);
    popup->setDark(m_dark);
    m_popups.insert(&window, popup);
    connect(&window, &QObject::destroyed, this, [this](QObject* gone) { m_popups.remove(gone); });
    connect(popup, &QuickAccessPopup::chosen, this,
            [this, shown = &window](const QuickAccessEntry& entry) { open(entry, *shown); });

    auto* action = new QAction(tr("Quick access"), popup);
    action->setObjectName(QStringLiteral("quickAccess"));
    action->setIcon(ShellLook::icon(QStringLiteral("pin"), m_dark));
    window.header().addTool(action);
    const QWidget* button = window.header().findChild<QWidget*>(QStringLiteral("quickAccessButton"));
    connect(action, &QAction::triggered, popup, [popup, button] {
        if (button)
            popup->showBelow(*button);
    });
}

void ShellQuickAccess::setDark(bool dark)
{
    m_dark = dark;
    for (QuickAccessPopup* popup : qAsConst(m_popups)) {
        popup->setDark(dark);
        if (auto* action = popup->findChild<QAction*>(QStringLiteral("quickAccess")))
            action->setIcon(ShellLook::icon(QStringLiteral("pin"), dark));
    }
}

void ShellQuickAccess::onCommand(const QString& command, NHelioSubPage* subPage)
{
    auto entry = readPinCommand(command);
    if (!entry) {
        const QString what = isPinCommand(command) ? QStringLiteral("nothing to pin in the command %1")
                                                   : QStringLiteral("unknown command %1");
        NxLoggerLite::writeWarning(logTag, what.arg(command.left(500)));
        return;
    }
    entry->suffix = suffixOf(subPage);
    m_list.pin(*entry);
    NxLoggerLite::writeInfo(logTag, QStringLiteral("pinned to quick access: %1").arg(entry->fileId));
}

bool ShellQuickAccess::activateOpenPage(const QString& fileId)
{
    const QVector<NHelioMainWindow*> windows = m_application.mainWindows();
    for (NHelioMainWindow* window : windows) {
        const QVector<NHelioAppPage*> pages = window->centralArea()->pages();
        for (NHelioAppPage* page : pages) {
            if (page->property("File_ID").toString() != fileId)
                continue;
            window->centralArea()->setCurrentPage(page);
            window->showToFront(true, true, false);
            return true;
        }
    }
    return false;
}

bool ShellQuickAccess::open(const QuickAccessEntry& entry, ShellMainWindow& window)
{
    if (activateOpenPage(entry.fileId))
        return true;
    QUrl url(m_documentsSite);
    if (!url.isValid() || url.host().isEmpty()) {
        NxLoggerLite::writeWarning(logTag, QStringLiteral("no documents site to open %1").arg(entry.fileId));
        return false;
    }
    url.setPath(QStringLiteral("/p/") + QString::fromLatin1(QUrl::toPercentEncoding(entry.fileId)),
                QUrl::StrictMode);
    QVariantMap properties{{QStringLiteral("File_ID"), entry.fileId}};
    if (!entry.suffix.isEmpty())
        properties.insert(QStringLiteral("suffix"), entry.suffix);
    return m_application.openDocumentsPage(window, url.toString(QUrl::FullyEncoded), properties);
}
