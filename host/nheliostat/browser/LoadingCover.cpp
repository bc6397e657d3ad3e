#include "nheliostat/browser/LoadingCover.h"

#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

namespace nheliostat::browser {

LoadingCover::LoadingCover(QWidget* parent)
    : QWidget(parent)
    , m_text(new QLabel)
{
    setObjectName(QStringLiteral("loadingCover"));
    setAutoFillBackground(true);
    m_text->setObjectName(QStringLiteral("loadingText"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setAlignment(Qt::AlignHCenter);
    m_text->setWordWrap(true);
    auto* const bar = new QProgressBar;
    bar->setRange(0, 0);
    bar->setTextVisible(false);
    bar->setFixedSize(240, 6);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(48, 24, 48, 24);
    column->setSpacing(16);
    column->addStretch(2);
    column->addWidget(m_text);
    column->addWidget(bar, 0, Qt::AlignHCenter);
    column->addStretch(3);
    hide();
}

void LoadingCover::showFor(const QString& fileName)
{
    m_text->setText(fileName.isEmpty() ? tr("Opening…") : tr("Opening %1…").arg(fileName));
    raise();
    show();
}

} // namespace nheliostat::browser
