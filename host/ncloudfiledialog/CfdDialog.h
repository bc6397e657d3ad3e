#pragma once

#include "ncloudfiledialog/CfdPlan.h"

#include <QFileDialog>

namespace cfd {

/** The dialog of a plan: the toolkit's own, in which several directories can be chosen too. */
class CfdDialog final : public QFileDialog
{
    Q_OBJECT
public:
    explicit CfdDialog(const CfdPlan& plan, QWidget* parent = nullptr);

    /** What was accepted: absolute, in the order of the dialog; empty before. */
    const QStringList& chosen() const { return m_chosen; }

protected:
    void accept() override;

private:
    void showPlaces();
    void widenColumns();
    /** The selected rows, when a name among them cannot be typed; else empty. */
    QStringList untypableSelection() const;

    const CfdPlan m_plan;
    QStringList m_chosen;
};

} // namespace cfd
