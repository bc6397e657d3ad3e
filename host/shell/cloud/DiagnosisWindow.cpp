#include "shell/cloud/DiagnosisWindow.h"

#include "zeolite/NxLoggerLite.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QPushButton>
#include <QTreeWidget>

#include <utility>

namespace shell {

namespace {

constexpr QSize windowSize(640, 300);
constexpr int margin = 16;
constexpr int spacing = 10;

enum Column { Name, State, Time, Detail };

QString stateText(DiagnosisCheck::State state)
{
    switch (state) {
    case DiagnosisCheck::State::Good:
        return DiagnosisWindow::tr("Good");
    case DiagnosisCheck::State::Bad:
        return DiagnosisWindow::tr("Failed");
    default:
        return DiagnosisWindow::tr("Checking…");
    }
}

} // namespace

DiagnosisWindow::DiagnosisWindow(Diagnosis::Places places, QWidget* parent)
    : CloudWindow(QStringLiteral("diagnosis"), tr("Network diagnosis"), parent)
    , m_diagnosis(std::move(places))
    , m_list(new QTreeWidget(this))
    , m_copy(new QPushButton(tr("Copy report"), this))
    , m_again(new QPushButton(tr("Run again"), this))
{
    build();
    connect(&m_diagnosis, &Diagnosis::changed, this, &DiagnosisWindow::showChecks);
    connect(m_copy, &QPushButton::clicked, this, &DiagnosisWindow::copyReport);
    connect(m_again, &QPushButton::clicked, &m_diagnosis, &Diagnosis::start);
}

void DiagnosisWindow::build()
{
    m_copy->setObjectName(QStringLiteral("copy"));
    m_again->setObjectName(QStringLiteral("again"));
    m_list->setHeaderLabels({tr("Check"), tr("Result"), tr("Time"), tr("Details")});
    m_list->setRootIsDecorated(false);
    m_list->setSelectionMode(QAbstractItemView::NoSelection);
    m_list->setFocusPolicy(Qt::NoFocus);
    m_list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_again);
    buttons->addStretch();
    buttons->addWidget(m_copy);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(spacing);
    layout->addWidget(m_list);
    layout->addLayout(buttons);
    resize(windowSize);
}

void DiagnosisWindow::open(const QString& title)
{
    if (!title.isEmpty())
        setWindowTitle(title);
    present();
    if (!m_diagnosis.isRunning())
        m_diagnosis.start();
}

void DiagnosisWindow::showChecks()
{
    m_list->clear();
    for (const DiagnosisCheck& check : m_diagnosis.checks()) {
        const bool isRunning = check.state == DiagnosisCheck::State::Running;
        auto* item =
            new QTreeWidgetItem(m_list, {check.name, stateText(check.state),
                                         isRunning ? QString() : tr("%1 ms").arg(check.ms), check.detail});
        item->setToolTip(Detail, check.detail);
        if (check.state == DiagnosisCheck::State::Bad)
            item->setForeground(State, QColor(0xd9, 0x48, 0x41));
    }
    m_copy->setEnabled(!m_diagnosis.isRunning());
    m_again->setEnabled(!m_diagnosis.isRunning());
    if (!m_diagnosis.isRunning())
        NxLoggerLite::writeInfo(QStringLiteral("diagnosis"), diagnosisReport(m_diagnosis.checks()));
}

void DiagnosisWindow::copyReport()
{
    QGuiApplication::clipboard()->setText(diagnosisReport(m_diagnosis.checks()));
}

} // namespace shell
