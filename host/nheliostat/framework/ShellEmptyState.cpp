#include "nheliostat/framework/ShellEmptyState.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

ShellEmptyState::ShellEmptyState(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("emptyState"));
    setAttribute(Qt::WA_StyledBackground);
    auto* hint = new QLabel(tr("No page is open."), this);
    auto* button = new QPushButton(tr("New page"), this);
    button->setObjectName(QStringLiteral("emptyNewPageButton"));
    connect(button, &QPushButton::clicked, this, &ShellEmptyState::newPageRequested);

    auto* column = new QVBoxLayout(this);
    column->setSpacing(16);
    column->addStretch(2);
    column->addWidget(hint, 0, Qt::AlignHCenter);
    column->addWidget(button, 0, Qt::AlignHCenter);
    column->addStretch(3);
}
