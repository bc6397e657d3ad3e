#include "shell/cloud/TransferDelegate.h"

#include "shell/cloud/TransferModel.h"

#include <QPainter>

#include <algorithm>

namespace shell {

using vlt::cloudsvr::TransferState;

namespace {

constexpr int barHeight = 6;
constexpr int margin = 8;
constexpr int percentWidth = 44;

QColor colourOf(TransferState state, const QPalette& palette)
{
    switch (state) {
    case TransferState::Failed:
        return {0xd9, 0x48, 0x41};
    case TransferState::Finished:
        return {0x2f, 0x9e, 0x5b};
    case TransferState::Stopped:
        return palette.color(QPalette::Mid);
    default:
        return palette.color(QPalette::Highlight);
    }
}

} // namespace

void TransferDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const
{
    if (index.column() != TransferModel::Progress) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    QStyleOptionViewItem background = option;
    initStyleOption(&background, index);
    background.text.clear();
    option.widget->style()->drawControl(QStyle::CE_ItemViewItem, &background, painter, option.widget);

    const QVariant state = index.data(TransferModel::StateRole);
    if (!state.isValid())
        return;
    const bool isSelected = option.state & QStyle::State_Selected;
    const QColor ink = option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text);
    const QRect area = option.rect.adjusted(margin, 0, -margin, 0);
    const QRect track(area.left(), area.center().y() - barHeight / 2,
                      std::max(area.width() - percentWidth, 0), barHeight);
    const int percent = index.data(TransferModel::PercentRole).toInt();
    QRect filled = track;
    filled.setWidth(track.width() * percent / 100);

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    QColor trackColour = ink;
    trackColour.setAlpha(40);
    painter->setBrush(trackColour);
    painter->drawRoundedRect(track, barHeight / 2.0, barHeight / 2.0);
    painter->setBrush(isSelected ? ink : colourOf(static_cast<TransferState>(state.toInt()), option.palette));
    if (!filled.isEmpty())
        painter->drawRoundedRect(filled, barHeight / 2.0, barHeight / 2.0);
    painter->setPen(ink);
    painter->drawText(area, int(Qt::AlignRight) | int(Qt::AlignVCenter),
                      index.data(Qt::DisplayRole).toString());
    painter->restore();
}

} // namespace shell
