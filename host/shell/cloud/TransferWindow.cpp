#include "shell/cloud/TransferWindow.h"

#include "shell/cloud/TransferDelegate.h"
#include "shell/cloud/TransferTexts.h"

#include <QBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTreeView>

#include <algorithm>

namespace shell {

using namespace vlt::cloudsvr;

namespace {

constexpr QSize windowSize(760, 440);
constexpr int margin = 16;
constexpr int spacing = 10;
constexpr int permille = 1000;

QString windowName(TransferDirection direction)
{
    return direction == TransferDirection::Upload ? QStringLiteral("uploads") : QStringLiteral("downloads");
}

QString titleOf(TransferDirection direction)
{
    return direction == TransferDirection::Upload ? TransferWindow::tr("Uploads")
                                                  : TransferWindow::tr("Downloads");
}

} // namespace

TransferWindow::TransferWindow(TransferSource* source, QWidget* parent)
    : CloudWindow(windowName(source->direction()), titleOf(source->direction()), parent)
    , m_source(source)
    , m_model(new TransferModel(*source, this))
    , m_view(new QTreeView(this))
    , m_summary(new QLabel(this))
    , m_total(new QProgressBar(this))
    , m_cancel(new QPushButton(this))
    , m_retry(new QPushButton(this))
    , m_clear(new QPushButton(tr("Clear finished"), this))
{
    m_source->setParent(this);
    build();
    connect(m_model, &TransferModel::refreshed, this, &TransferWindow::onRefreshed);
    connect(m_view->verticalScrollBar(), &QScrollBar::valueChanged, this, &TransferWindow::updateSight);
    connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &TransferWindow::onSelectionChanged);
    connect(m_cancel, &QPushButton::clicked, this,
            [this] { withChosen(&canCancel, &TransferSource::cancel); });
    connect(m_retry, &QPushButton::clicked, this, [this] { withChosen(&canRetry, &TransferSource::retry); });
    connect(m_clear, &QPushButton::clicked, m_source, &TransferSource::clearFinished);
    updateButtons();
    resize(windowSize);
}

void TransferWindow::build()
{
    m_cancel->setObjectName(QStringLiteral("cancel"));
    m_retry->setObjectName(QStringLiteral("retry"));
    m_clear->setObjectName(QStringLiteral("clear"));
    m_summary->setObjectName(QStringLiteral("summary"));
    m_total->setRange(0, permille);
    m_total->setTextVisible(false);
    m_total->setFixedHeight(spacing);
    m_view->setModel(m_model);
    m_view->setItemDelegate(new TransferDelegate(this));
    m_view->setRootIsDecorated(false);
    m_view->setUniformRowHeights(true);
    m_view->setAlternatingRowColors(true);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setTextElideMode(Qt::ElideMiddle);
    QHeaderView* header = m_view->header();
    header->setStretchLastSection(true);
    header->setSectionsMovable(false);
    const int widths[] = {240, 90, 160, 90};
    for (int column = 0; column < static_cast<int>(std::size(widths)); ++column)
        header->resizeSection(column, widths[column]);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_clear);
    buttons->addStretch();
    buttons->addWidget(m_retry);
    buttons->addWidget(m_cancel);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(spacing);
    layout->addWidget(m_summary);
    layout->addWidget(m_total);
    layout->addWidget(m_view);
    layout->addLayout(buttons);
}

void TransferWindow::showEvent(QShowEvent* event)
{
    CloudWindow::showEvent(event);
    updateSight();
    m_model->refresh();
}

void TransferWindow::resizeEvent(QResizeEvent* event)
{
    CloudWindow::resizeEvent(event);
    updateSight();
}

void TransferWindow::updateSight()
{
    const QRect area = m_view->viewport()->rect();
    const QModelIndex first = m_view->indexAt(area.topLeft());
    const int rowHeight = std::max(m_view->sizeHintForRow(0), m_view->fontMetrics().height());
    const int from = first.isValid() ? first.row() : 0;
    m_model->setInSight(from, from + area.height() / std::max(rowHeight, 1) + 1);
}

void TransferWindow::onRefreshed()
{
    const TransferList& list = m_model->list();
    m_summary->setText(m_model->isAnswered() ? transfertexts::summary(list, m_source->direction())
                                             : tr("The cloud service does not answer."));
    const double share =
        list.size > 0 ? static_cast<double>(list.done) / static_cast<double>(list.size) : 0.0;
    m_total->setValue(static_cast<int>(std::clamp(share, 0.0, 1.0) * permille));
    m_total->setVisible(list.total > 0);
    restoreSelection();
    updateButtons();
    updateSight();
}

void TransferWindow::onSelectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    if (m_isRestoring)
        return;
    const auto forEach = [this](const QItemSelection& selection, const auto& act) {
        for (const QItemSelectionRange& range : selection) {
            for (int i = range.top(); i <= range.bottom(); ++i) {
                if (const TransferRow* row = m_model->row(i))
                    act(row->id);
            }
        }
    };
    forEach(deselected, [this](const QString& id) { m_selected.remove(id); });
    forEach(selected, [this](const QString& id) { m_selected.insert(id); });
    if (m_view->selectionModel()->selection().isEmpty())
        m_selected.clear();
    updateButtons();
}

void TransferWindow::restoreSelection()
{
    if (m_selected.isEmpty() || isAllSelected())
        return;
    QItemSelection selection;
    const int last = TransferModel::ColumnCount - 1;
    for (const TransferRow& row : m_model->list().rows) {
        if (!m_selected.contains(row.id))
            continue;
        const int at = m_model->indexOf(row.id);
        selection.select(m_model->index(at, 0), m_model->index(at, last));
    }
    const QScopedValueRollback<bool> restoring(m_isRestoring, true);
    m_view->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

bool TransferWindow::isAllSelected() const
{
    const QItemSelection selection = m_view->selectionModel()->selection();
    int rows = 0;
    for (const QItemSelectionRange& range : selection)
        rows += range.height();
    return rows > 0 && rows >= m_model->rowCount();
}

void TransferWindow::updateButtons()
{
    const TransferList& list = m_model->list();
    const bool all = m_selected.isEmpty() || isAllSelected();
    m_cancel->setText(all ? tr("Cancel all") : tr("Cancel"));
    m_retry->setText(all ? tr("Try all again") : tr("Try again"));
    m_cancel->setEnabled(list.active > 0);
    m_retry->setEnabled(list.failed > 0);
    m_clear->setEnabled(list.finished + list.failed > 0);
}

void TransferWindow::withChosen(TransferTest test, void (TransferSource::*act)(const QStringList&))
{
    if (!m_selected.isEmpty() && !isAllSelected()) {
        (m_source->*act)(m_selected.values());
        return;
    }
    const auto actOnAll = [source = m_source, act](const QStringList& ids) {
        if (!ids.isEmpty())
            (source->*act)(ids);
    };
    collectTransfers(*m_source, test, actOnAll);
}

} // namespace shell
