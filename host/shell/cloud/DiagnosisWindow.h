#pragma once

#include "shell/cloud/CloudWindow.h"
#include "shell/cloud/Diagnosis.h"

class QPushButton;
class QTreeWidget;

namespace shell {

/** Shows a diagnosis while it runs; its report can be copied, and it can be run again. */
class DiagnosisWindow final : public CloudWindow
{
    Q_OBJECT
public:
    DiagnosisWindow(Diagnosis::Places places, QWidget* parent);

    /** Shows the window with the title and starts the diagnosis unless it runs. */
    void open(const QString& title);

private:
    void build();
    void showChecks();
    void copyReport();

    Diagnosis m_diagnosis;
    QTreeWidget* m_list;
    QPushButton* m_copy;
    QPushButton* m_again;
};

} // namespace shell
