#include "nheliostat/browser/BrowserToolbar.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QStyle>
#include <QToolButton>

namespace nheliostat::browser {

namespace {

QToolButton* makeButton(QWidget* parent, const QString& name, QStyle::StandardPixmap icon,
                        const QString& toolTip)
{
    auto* const button = new QToolButton(parent);
    button->setObjectName(name);
    button->setIcon(parent->style()->standardIcon(icon));
    button->setToolTip(toolTip);
    button->setAutoRaise(true);
    return button;
}

} // namespace

BrowserToolbar::BrowserToolbar(QWidget* parent)
    : QWidget(parent)
    , m_back(makeButton(this, QStringLiteral("backButton"), QStyle::SP_ArrowBack, tr("Back")))
    , m_forward(makeButton(this, QStringLiteral("forwardButton"), QStyle::SP_ArrowForward, tr("Forward")))
    , m_address(new QLineEdit(this))
{
    setObjectName(QStringLiteral("browserToolbar"));
    m_address->setObjectName(QStringLiteral("addressLine"));
    m_address->setPlaceholderText(tr("Address"));
    QToolButton* const reload =
        makeButton(this, QStringLiteral("reloadButton"), QStyle::SP_BrowserReload, tr("Reload"));
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(6, 4, 6, 4);
    row->setSpacing(4);
    for (QWidget* const part : std::initializer_list<QWidget*>{m_back, m_forward, reload, m_address})
        row->addWidget(part);
    setHistory(false, false);

    connect(m_back, &QToolButton::clicked, this, &BrowserToolbar::backRequested);
    connect(m_forward, &QToolButton::clicked, this, &BrowserToolbar::forwardRequested);
    connect(reload, &QToolButton::clicked, this, &BrowserToolbar::reloadRequested);
    connect(m_address, &QLineEdit::returnPressed, this, &BrowserToolbar::enterAddress);
}

void BrowserToolbar::setAddress(const QString& address)
{
    if (m_address->isModified() && m_address->hasFocus())
        return;
    m_address->setText(address);
    m_address->setCursorPosition(0);
}

void BrowserToolbar::setHistory(bool canGoBack, bool canGoForward)
{
    m_back->setEnabled(canGoBack);
    m_forward->setEnabled(canGoForward);
}

void BrowserToolbar::enterAddress()
{
    m_address->setModified(false);
    if (!m_address->text().trimmed().isEmpty())
        Q_EMIT addressEntered(m_address->text().trimmed());
}

} // namespace nheliostat::browser
