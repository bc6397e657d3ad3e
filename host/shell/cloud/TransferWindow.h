#pragma once

#include "shell/cloud/CloudWindow.h"
#include "shell/cloud/TransferCollector.h"
#include "shell/cloud/TransferModel.h"

#include <QSet>

class QItemSelection;
class QLabel;
class QProgressBar;
class QPushButton;
class QTreeView;

namespace shell {

/**
 * The progress window of a direction: all transfers with their bars, what they sum up to, and buttons that
 * cancel and try again those that are selected, or all when none is. The selection stays with its transfers
 * when rows move.
 */
class TransferWindow final : public CloudWindow
{
    Q_OBJECT
public:
    /** Takes the source over. */
    TransferWindow(TransferSource* source, QWidget* parent);

    TransferModel& model() { return *m_model; }

protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void build();
    void updateSight();
    void onRefreshed();
    void onSelectionChanged(const QItemSelection& selected, const QItemSelection& deselected);
    void restoreSelection();
    void updateButtons();
    bool isAllSelected() const;
    /** The ids that a button is about: those selected that pass, else all that pass. */
    void withChosen(TransferTest test, void (TransferSource::*act)(const QStringList&));

    TransferSource* m_source;
    TransferModel* m_model;
    QTreeView* m_view;
    QLabel* m_summary;
    QProgressBar* m_total;
    QPushButton* m_cancel;
    QPushButton* m_retry;
    QPushButton* m_clear;
    QSet<QString> m_selected; //!< ids
    bool m_isRestoring = false;
};

} // namespace shell
