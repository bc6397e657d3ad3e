#include "nheliostat/framework/ShellTab.h"

#include "nheliostat/framework/ShellCentralArea.h"

#include <QMessageBox>

ShellTab::ShellTab(NHelioAppPage* page, ShellCentralArea& area, QObject* parent)
    : NHelioTab(parent)
    , m_key(page)
    , m_page(page)
    , m_area(&area)
    , m_subPage(page->initialSubPage())
{
    if (!m_subPage)
        return;
    connect(m_subPage, &NHelioSubPage::windowTitleChanged, this, &ShellTab::changed);
    connect(m_subPage, &NHelioSubPage::iconChanged, this, &ShellTab::changed);
    m_delegate = m_subPage->createTabDelegate(this);
    if (m_delegate)
        connect(m_delegate, &NHelioTabDelegate::iconChanged, this, &ShellTab::changed);
}

QString ShellTab::text() const
{
    const QString title = m_subPage ? m_subPage->windowTitle() : QString();
    return title.isEmpty() && m_page ? m_page->pageTitle() : title;
}

QIcon ShellTab::icon(qreal devicePixelRatio) const
{
    return m_delegate ? m_delegate->getIcon(devicePixelRatio) : QIcon();
}

bool ShellTab::isClosable() const
{
    return !m_subPage || m_subPage->isClosable();
}

bool ShellTab::tryClose()
{
    return m_page && isClosable() && m_page->close();
}

void ShellTab::restart()
{
    if (!m_page)
        return;
    if (m_leave)
        return;
    const auto done = [this](bool leaves, const QVector<NHelioAppPage*>&) {
        const bool wasAsked = m_leave && m_leave->wasAsked();
        m_leave.clear();
        if (!leaves || !m_page)
            return;
        if (!wasAsked && m_subPage && !m_subPage->isDiscardable())
            askToRestart();
        else
            restartNow();
    };
    m_leave =
        new LeaveRequest({m_page}, LeaveRequest::Purpose::Restart, LeaveRequest::Manner::Ask, done, this);
    m_leave->start();
}

void ShellTab::askToRestart()
{
    auto* question = new QMessageBox(QMessageBox::Question, tr("Restart page"),
                                     tr("What the page is doing ends. Restart it?"),
                                     QMessageBox::Yes | QMessageBox::No, m_page->window());
    question->setAttribute(Qt::WA_DeleteOnClose);
    connect(question, &QMessageBox::finished, this, [this](int answer) {
        if (answer == QMessageBox::Yes && m_page)
            restartNow();
    });
    question->open();
}

void ShellTab::restartNow()
{
    const QPointer<NHelioAppPage> page = m_page;
    if (auto* guard = documentGuardOf(page))
        guard->allowLeaving();
    page->releasePage();
    if (page && page->isReleased())
        page->load();
    else if (page && page->metaObject()->indexOfMethod("refreshPage()") >= 0)
        QMetaObject::invokeMethod(page, "refreshPage");
}

void ShellTab::setAllowReAttachSubwindow(bool allow)
{
    m_allowReAttach = allow;
}

void ShellTab::reAttachSubPage(QWidget* window)
{
    const auto* mainWindow = qobject_cast<NHelioMainWindow*>(window);
    NHelioCentralArea* area = mainWindow ? mainWindow->centralArea() : m_area.data();
    if (!m_allowReAttach || !m_page || !m_subPage || !area)
        return;
    m_allowReAttach = false;
    area->addPage(m_page);
    if (m_subPage)
        m_subPage->activate({}, true);
}
