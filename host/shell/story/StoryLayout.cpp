#include "shell/story/StoryLayout.h"

#include <algorithm>
#include <cmath>

namespace shell::story {

namespace {

constexpr double titleColumn = 150;
constexpr double margin = 24;
constexpr double rowHeight = 22;
constexpr double barHeight = 13;
constexpr double pointSize = 9;
constexpr double lanePadding = 8;
constexpr double leastBar = 3;
constexpr double labelGap = 5;
constexpr double itemGap = 10;

/** The widths of a wide screen font, so that narrower ones fit too. */
double charWidth(QChar c)
{
    constexpr ushort firstIdeograph = 0x2e80;
    constexpr ushort ellipsis = 0x2026;
    const ushort code = c.unicode();
    if (code >= firstIdeograph || code == ellipsis)
        return 1.0;
    if (QStringLiteral("iljI.,:;'|!()[] ·/tfr").contains(c))
        return 0.41;
    if (QStringLiteral("mwMW%@").contains(c))
        return 0.98;
    return c.isUpper() ? 0.72 : 0.64;
}

struct Span
{
    double from;
    double to;
};

bool isFree(const QVector<Span>& row, const Span& span)
{
    return std::none_of(row.begin(), row.end(), [&span](const Span& taken) {
        return span.from < taken.to + itemGap && taken.from < span.to + itemGap;
    });
}

int freeRow(QVector<QVector<Span>>& rows, const Span& span)
{
    for (int i = 0; i < rows.size(); ++i) {
        if (isFree(rows.at(i), span)) {
            rows[i].append(span);
            return i;
        }
    }
    rows.append(QVector<Span>{span});
    return rows.size() - 1;
}

/** Sets the horizontal places of the bar and the label. */
PlacedItem placeAcross(const LaneItem& item, const Layout& layout)
{
    PlacedItem placed;
    placed.item = item;
    const double from = std::max(layout.x(item.startMs), layout.plotLeft);
    const double to = std::min(layout.x(item.endMs), layout.plotRight);
    placed.bar = item.isPoint ? QRectF(from - pointSize / 2, 0, pointSize, pointSize)
                              : QRectF(from, 0, std::max(leastBar, to - from), barHeight);
    placed.text = item.label;
    double width = textWidth(item.label, labelSize);
    // A bar that waited has its label on the part that did.
    const double waited =
        item.waitedUntilMs ? layout.x(*item.waitedUntilMs) - placed.bar.left() : placed.bar.width();
    placed.labelInside = !item.isPoint && width + 2 * labelGap <= std::min(waited, placed.bar.width());
    const double right = placed.bar.right() + labelGap;
    const double left = placed.bar.left() - labelGap;
    if (placed.labelInside) {
        placed.label = QRectF(placed.bar.left() + labelGap, 0, width, rowHeight);
        return placed;
    }
    const double roomRight = layout.plotRight - right;
    const double roomLeft = left - layout.plotLeft;
    const bool toTheRight = width <= roomRight || roomRight >= roomLeft;
    const double room = toTheRight ? roomRight : roomLeft;
    if (width > room) {
        placed.text = shortened(item.label, labelSize, room);
        width = room;
    }
    placed.labelBefore = !toTheRight;
    placed.label = QRectF(toTheRight ? right : left - width, 0, width, rowHeight);
    return placed;
}

PlacedLane placeLane(const Lane& lane, const Layout& layout, double top)
{
    PlacedLane placed;
    placed.title = wrapped(lane.title, laneTitleSize, titleColumn, true);
    placed.top = top;
    QVector<QVector<Span>> rows;
    for (const LaneItem& item : lane.items) {
        PlacedItem next = placeAcross(item, layout);
        const QRectF both = next.bar.united(next.label);
        const double rowTop = top + lanePadding + rowHeight * freeRow(rows, {both.left(), both.right()});
        next.bar.moveTop(rowTop + (rowHeight - next.bar.height()) / 2);
        next.label.moveTop(rowTop);
        placed.items.append(next);
    }
    constexpr double titleLine = 16;
    const double titleHeight = titleLine * placed.title.size();
    placed.height = 2 * lanePadding + std::max({titleHeight, rowHeight, rowHeight * rows.size()});
    return placed;
}

/** 1, 2 or 5 times a power of ten, so that the numbers of the axis stand apart. */
double tickStep(double endMs, double plotWidth)
{
    constexpr double leastDistance = 80;
    const double least = endMs * leastDistance / plotWidth;
    const double power = std::pow(10, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= least)
            return factor * power;
    }
    return 10 * power;
}

} // namespace

double textWidth(const QString& text, double size, bool bold)
{
    constexpr double boldFactor = 1.1;
    double width = 0;
    for (const QChar c : text)
        width += charWidth(c);
    return width * size * (bold ? boldFactor : 1);
}

QString shortened(const QString& text, double size, double width, bool bold)
{
    if (textWidth(text, size, bold) <= width)
        return text;
    for (int length = text.size() - 1; length > 0; --length) {
        const QString shorter = text.left(length).trimmed() + QChar(0x2026);
        if (textWidth(shorter, size, bold) <= width)
            return shorter;
    }
    return {};
}

QStringList wrapped(const QString& text, double size, double width, bool bold)
{
    QStringList lines;
    QString line;
    for (const QString& word : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QString longer = line.isEmpty() ? word : line + QLatin1Char(' ') + word;
        if (line.isEmpty() || textWidth(longer, size, bold) <= width) {
            line = longer;
            continue;
        }
        lines.append(shortened(line, size, width, bold));
        line = word;
    }
    if (!line.isEmpty())
        lines.append(shortened(line, size, width, bold));
    return lines;
}

Layout layOut(const Lanes& lanes, double width, double top)
{
    Layout layout;
    layout.width = width;
    layout.plotLeft = margin + titleColumn + margin;
    layout.plotRight = width - margin;
    layout.lanesTop = top;
    layout.endMs = lanes.endMs;
    double y = top;
    for (const Lane& lane : lanes.lanes) {
        layout.lanes.append(placeLane(lane, layout, y));
        y += layout.lanes.last().height;
    }
    layout.height = y;
    const double step = tickStep(layout.endMs, layout.plotRight - layout.plotLeft);
    for (double tick = 0; tick <= layout.endMs; tick += step)
        layout.ticks.append(tick);
    return layout;
}

} // namespace shell::story
