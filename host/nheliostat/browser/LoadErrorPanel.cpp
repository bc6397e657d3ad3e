#include "nheliostat/browser/LoadErrorPanel.h"

#include "nheliostat/browser/NetErrors.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace nheliostat::browser {

namespace {

QLabel* addLabel(QVBoxLayout* column, const QString& name)
{
    auto* const label = new QLabel;
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setAlignment(Qt::AlignHCenter);
    label->setWordWrap(true);
    column->addWidget(label);
    return label;
}

} // namespace

LoadErrorPanel::LoadErrorPanel(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("loadErrorPanel"));
    setAutoFillBackground(true);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(48, 24, 48, 24);
    column->setSpacing(12);
    column->addStretch(2);
    m_heading = addLabel(column, QStringLiteral("errorHeading"));
    QFont font = m_heading->font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    m_heading->setFont(font);
    m_reason = addLabel(column, QStringLiteral("errorReason"));
    m_address = addLabel(column, QStringLiteral("errorAddress"));
    m_code = addLabel(column, QStringLiteral("errorCode"));
    m_code->setEnabled(false);
    auto* const button = new QPushButton(tr("Retry"));
    button->setObjectName(QStringLiteral("retryButton"));
    connect(button, &QPushButton::clicked, this, &LoadErrorPanel::retry);
    column->addWidget(button, 0, Qt::AlignHCenter);
    column->addStretch(3);
    hide();
}

void LoadErrorPanel::showError(const QUrl& url, const NetError& error)
{
    const QString code =
        error.code < 0 ? QStringLiteral("%1 (%2)").arg(error.message).arg(error.code) : error.message;
    showTexts(url, tr("This page cannot be shown"), explained(error), code);
}

void LoadErrorPanel::showCrash(const QUrl& url)
{
    showTexts(url, tr("This page stopped working"), tr("Its process ended unexpectedly."), QString());
}

void LoadErrorPanel::showTexts(const QUrl& url, const QString& heading, const QString& reason,
                               const QString& code)
{
    m_url = url;
    m_heading->setText(heading);
    m_reason->setText(reason);
    m_address->setText(url.toDisplayString());
    m_code->setText(code);
    m_code->setVisible(!code.isEmpty());
    raise();
    show();
}

void LoadErrorPanel::retry()
{
    hide();
    Q_EMIT retryRequested(m_url);
}

} // namespace nheliostat::browser
