#include "nheliostat/framework/ShellHeaderBar.h"

#include <QHBoxLayout>

ShellHeaderBar::ShellHeaderBar(NHelioTabBar* tabBar, QWidget* parent)
    : NHelioHeaderBar(parent)
{
    setObjectName(QStringLiteral("headerBar"));
    setAttribute(Qt::WA_StyledBackground);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(6, 0, 6, 0);
    row->addWidget(tabBar);
}
