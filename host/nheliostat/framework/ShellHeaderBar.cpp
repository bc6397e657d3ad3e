#include "nheliostat/framework/ShellHeaderBar.h"

#include <QAction>
#include <QHBoxLayout>
#include <QToolButton>

ShellHeaderBar::ShellHeaderBar(NHelioTabBar* tabBar, QWidget* parent)
    : NHelioHeaderBar(parent)
{
    setObjectName(QStringLiteral("headerBar"));
    setAttribute(Qt::WA_StyledBackground);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(6, 0, 6, 0);
    row->addWidget(tabBar, 1);
}

void ShellHeaderBar::setMode(int mode)
{
    if (mode == 0 || mode == 1)
        m_mode = mode;
}

void ShellHeaderBar::addTool(QAction* action)
{
    auto* button = new QToolButton(this);
    button->setObjectName(action->objectName() + QStringLiteral("Button"));
    button->setDefaultAction(action);
    button->setAutoRaise(true);
    button->setProperty("headerTool", true);
    button->setVisible(action->isVisible());
    layout()->addWidget(button);
}
