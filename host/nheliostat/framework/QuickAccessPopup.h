#pragma once

#include "nheliostat/framework/QuickAccessList.h"

#include <QFrame>

class QVBoxLayout;

/** The pinned documents, one a row: a click opens it, the small button takes it off the list. */
class QuickAccessPopup final : public QFrame
{
    Q_OBJECT
public:
    /** `list` outlives the popup. */
    QuickAccessPopup(QuickAccessList& list, QWidget* parent);

    /** Shows the list as it is now, below a button. */
    void showBelow(const QWidget& button);
    void setDark(bool dark);

Q_SIGNALS:
    void chosen(const QuickAccessEntry& entry);

private:
    /** Rows are made only to be shown. */
    void refresh();
    void fill();
    void addRow(const QuickAccessEntry& entry);
    void addHint();

    QuickAccessList& m_list;
    QWidget* m_rows;
    QVBoxLayout* m_column;
    bool m_dark = false;
};
