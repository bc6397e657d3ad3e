#include "nheliostat/documents/DocumentMessage.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QLabel* centredText(const QString& objectName, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    return label;
}

} // namespace

DocumentMessage::DocumentMessage(QWidget* parent)
    : QWidget(parent)
    , m_heading(centredText(QStringLiteral("documentHeading"), this))
    , m_detail(centredText(QStringLiteral("documentDetail"), this))
    , m_bar(new QProgressBar(this))
    , m_retry(new QPushButton(tr("Try again"), this))
{
    setObjectName(QStringLiteral("documentMessage"));
    m_bar->setObjectName(QStringLiteral("documentProgress"));
    m_bar->setTextVisible(false);
    m_bar->setFixedSize(280, 6);
    m_retry->setObjectName(QStringLiteral("documentButton"));
    connect(m_retry, &QPushButton::clicked, this, &DocumentMessage::retryRequested);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(48, 24, 48, 24);
    column->setSpacing(12);
    column->addStretch(2);
    column->addWidget(m_heading);
    column->addWidget(m_detail);
    column->addWidget(m_bar, 0, Qt::AlignHCenter);
    column->addWidget(m_retry, 0, Qt::AlignHCenter);
    column->addStretch(3);
    showProgress({}, 0);
}

void DocumentMessage::showProgress(const QString& heading, int percent)
{
    constexpr int whole = 100;
    m_heading->setText(heading);
    m_detail->hide();
    m_retry->hide();
    m_bar->setRange(0, percent > 0 ? whole : 0);
    m_bar->setValue(percent);
    m_bar->show();
}

void DocumentMessage::showFailure(const QString& heading, const QString& why, bool canRetry)
{
    m_heading->setText(heading);
    m_detail->setText(why);
    m_detail->show();
    m_bar->hide();
    m_retry->setVisible(canRetry);
}

QString DocumentMessage::text() const
{
    return m_detail->isHidden() ? m_heading->text()
                                : QStringLiteral("%1 %2").arg(m_heading->text(), m_detail->text());
}
