#include "nheliostat/framework/ShellTabMenu.h"

#include "nheliostat/NHelioSubPage.h"
#include "nheliostat/framework/ShellTab.h"

ShellTabMenu::ShellTabMenu(ShellTab& tab, bool hasOthers, QWidget* parent)
    : NHelioTabMenu(parent)
    , m_tab(&tab)
    , m_hasOthers(hasOthers)
{
    setObjectName(QStringLiteral("tabMenu"));
}

QAction* ShellTabMenu::add(const QString& name, const QString& text)
{
    if (findChild<QAction*>(name, Qt::FindDirectChildrenOnly))
        return nullptr;
    QAction* action = addAction(text);
    action->setObjectName(name);
    return action;
}

void ShellTabMenu::addFixAction()
{
    QAction* fix = add(QStringLiteral("fixTab"), tr("Restart page"));
    if (fix && m_tab)
        connect(fix, &QAction::triggered, m_tab.data(), &ShellTab::restart);
}

void ShellTabMenu::addWindowActions()
{
    const NHelioSubPage* subPage = m_tab ? m_tab->subPage() : nullptr;
    if (m_hasWindowActions || !subPage || !subPage->supportsStandaloneWindow())
        return;
    m_hasWindowActions = true;
    Q_EMIT windowActionsAsked();
}

void ShellTabMenu::addCloseAction()
{
    QAction* close = add(QStringLiteral("closeTab"), tr("Close"));
    if (close && m_tab) {
        close->setEnabled(m_tab->isClosable());
        connect(close, &QAction::triggered, m_tab.data(), &ShellTab::tryClose);
    }
}

void ShellTabMenu::addCloseOthersAction()
{
    QAction* closeOthers = add(QStringLiteral("closeOtherTabs"), tr("Close others"));
    if (!closeOthers)
        return;
    closeOthers->setEnabled(m_hasOthers);
    connect(closeOthers, &QAction::triggered, this, &ShellTabMenu::closeOthersChosen);
}

void ShellTabMenu::complete()
{
    addSeparator();
    addWindowActions();
    addSeparator();
    addCloseAction();
    addCloseOthersAction();
}
