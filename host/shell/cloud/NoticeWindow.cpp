#include "shell/cloud/NoticeWindow.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace shell {

namespace {

constexpr int textWidth = 340;
constexpr int margin = 20;
constexpr int spacing = 16;

} // namespace

NoticeWindow::NoticeWindow(const QString& name, const QString& title, const QString& text, QWidget* parent)
    : CloudWindow(name, title, parent)
{
    auto* label = new QLabel(text, this);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setMinimumWidth(textWidth);
    auto* close = new QPushButton(tr("Close"), this);
    connect(close, &QPushButton::clicked, this, &NoticeWindow::close);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(spacing);
    layout->addWidget(label);
    layout->addWidget(close, 0, Qt::AlignRight);
}

} // namespace shell
