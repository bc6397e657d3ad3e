#include "nheliostat/framework/ShellRecoverBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

ShellRecoverBar::ShellRecoverBar(int documents, QWidget* parent)
    : QFrame(parent)
{
    setObjectName(QStringLiteral("recoverBar"));
    setAttribute(Qt::WA_StyledBackground);
    const bool one = documents == 1;
    auto* text =
        new QLabel(one ? tr("A document was open when the program ended unexpectedly.")
                       : tr("%1 documents were open when the program ended unexpectedly.").arg(documents),
                   this);
    auto* restore =
        new QPushButton(one ? tr("Restore the document") : tr("Restore %1 documents").arg(documents), this);
    restore->setObjectName(QStringLiteral("recoverButton"));
    auto* dismiss = new QPushButton(tr("Discard"), this);
    dismiss->setObjectName(QStringLiteral("recoverDismissButton"));
    connect(restore, &QPushButton::clicked, this, &ShellRecoverBar::restoreChosen);
    connect(dismiss, &QPushButton::clicked, this, &ShellRecoverBar::dismissChosen);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(16, 8, 16, 8);
    row->addWidget(text, 1);
    row->addWidget(restore);
    row->addWidget(dismiss);
}
