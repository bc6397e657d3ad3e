#include "nvltcloudmodule/SendFileWindow.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QFormLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include <utility>

namespace vltcloud {

namespace {

constexpr QSize windowSize(480, 340);
constexpr int margin = 20;
constexpr int spacing = 12;

} // namespace

SendFileWindow::SendFileWindow(SendFileRequest file, Sender sender, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_file(std::move(file))
    , m_sender(std::move(sender))
    , m_recipients(new QLineEdit(this))
    , m_message(new QPlainTextEdit(this))
    , m_outcome(new QLabel(this))
    , m_copy(new QPushButton(tr("Copy link"), this))
    , m_close(new QPushButton(tr("Close"), this))
    , m_send(new QPushButton(tr("Send"), this))
{
    setObjectName(QStringLiteral("sendFile"));
    setWindowTitle(tr("Send %1").arg(m_file.fileName));
    setAttribute(Qt::WA_QuitOnClose, false);
    setAutoFillBackground(true);
    build();
    connect(m_send, &QPushButton::clicked, this, &SendFileWindow::send);
    connect(m_copy, &QPushButton::clicked, this, &SendFileWindow::copyLink);
    connect(m_close, &QPushButton::clicked, this, &SendFileWindow::close);
    connect(m_recipients, &QLineEdit::returnPressed, m_message, qOverload<>(&QWidget::setFocus));
}

void SendFileWindow::build()
{
    m_recipients->setObjectName(QStringLiteral("recipients"));
    m_message->setObjectName(QStringLiteral("message"));
    m_outcome->setObjectName(QStringLiteral("outcome"));
    m_copy->setObjectName(QStringLiteral("copyLink"));
    m_send->setObjectName(QStringLiteral("send"));
    m_recipients->setPlaceholderText(tr("Users, separated by commas"));
    m_message->setPlaceholderText(tr("A message for them"));
    m_message->setTabChangesFocus(true);
    m_outcome->setWordWrap(true);
    m_outcome->setTextFormat(Qt::PlainText);
    m_copy->setEnabled(!m_file.link.isEmpty());
    m_send->setDefault(true);
    auto* name = new QLabel(m_file.fileName, this);
    name->setTextFormat(Qt::PlainText);
    name->setWordWrap(true);

    auto* fields = new QFormLayout;
    fields->setSpacing(spacing);
    fields->addRow(tr("File"), name);
    fields->addRow(tr("To"), m_recipients);
    fields->addRow(tr("Message"), m_message);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_copy);
    buttons->addStretch();
    buttons->addWidget(m_close);
    buttons->addWidget(m_send);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(spacing);
    layout->addLayout(fields);
    layout->addWidget(m_outcome);
    layout->addLayout(buttons);
    m_recipients->setFocus();
    resize(windowSize);
}

void SendFileWindow::send()
{
    const QStringList recipients = readRecipients(m_recipients->text());
    if (recipients.isEmpty()) {
        tell(tr("Enter at least one user."), true);
        m_recipients->setFocus();
        return;
    }
    const QString error = putIntoOutbox(
        m_sender, {m_file, recipients, m_message->toPlainText(), QDateTime::currentDateTimeUtc()});
    if (!error.isEmpty()) {
        tell(error, true);
        return;
    }
    tell(tr("Sent to %1.").arg(recipients.join(QStringLiteral(", "))), false);
    m_recipients->clear();
    m_message->clear();
}

void SendFileWindow::copyLink()
{
    QGuiApplication::clipboard()->setText(m_file.link);
    tell(tr("The link is in the clipboard."), false);
}

void SendFileWindow::tell(const QString& text, bool isError)
{
    m_outcome->setStyleSheet(isError ? QStringLiteral("color: #d94841") : QString());
    m_outcome->setText(text);
}

} // namespace vltcloud
