#pragma once

#include <QStyledItemDelegate>

namespace shell {

/** Draws the progress column of a TransferModel as a bar in the colour of the state. */
class TransferDelegate final : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};

} // namespace shell
