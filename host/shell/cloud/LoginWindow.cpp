#include "shell/cloud/LoginWindow.h"

#include <QBoxLayout>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <utility>

namespace shell {

namespace {

constexpr int windowWidth = 380;
constexpr int margin = 20;
constexpr int spacing = 12;

} // namespace

LoginWindow::LoginWindow(SignIn signIn, QWidget* parent)
    : CloudWindow(QStringLiteral("login"), tr("Sign in"), parent)
    , m_signIn(std::move(signIn))
    , m_reason(new QLabel(this))
    , m_userId(new QLineEdit(this))
    , m_password(new QLineEdit(this))
    , m_error(new QLabel(this))
    , m_confirm(new QPushButton(tr("Sign in"), this))
    , m_cancel(new QPushButton(tr("Cancel"), this))
{
    build();
    connect(m_confirm, &QPushButton::clicked, this, &LoginWindow::tryIt);
    connect(m_cancel, &QPushButton::clicked, this, &LoginWindow::close);
    connect(m_userId, &QLineEdit::textChanged, this, &LoginWindow::updateButton);
    connect(m_userId, &QLineEdit::returnPressed, m_password, qOverload<>(&QLineEdit::setFocus));
    connect(m_password, &QLineEdit::returnPressed, m_confirm, &QPushButton::click);
}

void LoginWindow::build()
{
    m_userId->setObjectName(QStringLiteral("userId"));
    m_password->setObjectName(QStringLiteral("password"));
    m_confirm->setObjectName(QStringLiteral("signIn"));
    m_error->setObjectName(QStringLiteral("error"));
    m_password->setEchoMode(QLineEdit::Password);
    m_reason->setWordWrap(true);
    m_reason->setTextFormat(Qt::PlainText);
    m_error->setWordWrap(true);
    m_error->setTextFormat(Qt::PlainText);
    m_error->setStyleSheet(QStringLiteral("color: #d94841"));
    m_confirm->setDefault(true);

    auto* fields = new QFormLayout;
    fields->setSpacing(spacing);
    fields->addRow(tr("User"), m_userId);
    fields->addRow(tr("Password"), m_password);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_confirm);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(spacing);
    layout->addWidget(m_reason);
    layout->addLayout(fields);
    layout->addWidget(m_error);
    layout->addStretch();
    layout->addLayout(buttons);
    setMinimumWidth(windowWidth);
}

void LoginWindow::ask(const QString& reason, const QString& userId)
{
    m_reason->setText(reason.isEmpty() ? tr("Sign in to work with documents in the cloud.") : reason);
    if (!isVisible()) {
        m_userId->setText(userId);
        m_password->clear();
        m_error->hide();
    }
    updateButton();
    present();
    (m_userId->text().isEmpty() ? m_userId : m_password)->setFocus();
}

void LoginWindow::tryIt()
{
    const QString error = m_signIn(m_userId->text().trimmed(), m_password->text());
    m_error->setText(error);
    m_error->setVisible(!error.isEmpty());
    if (error.isEmpty())
        close();
    else
        m_userId->selectAll();
}

void LoginWindow::updateButton()
{
    m_confirm->setEnabled(!m_userId->text().trimmed().isEmpty());
}

} // namespace shell
