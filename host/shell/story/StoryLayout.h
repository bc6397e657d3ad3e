#pragma once

#include "shell/story/StoryLanes.h"

#include <QRectF>
#include <QStringList>

namespace shell::story {

/** An item with its place. Nothing in a lane overlaps anything else in it, labels included. */
struct PlacedItem
{
    LaneItem item;
    QRectF bar; //!< of a point: a square around it
    QRectF label;
    QString text; //!< the label, shortened where it does not fit
    bool labelInside = false;
    bool labelBefore = false; //!< it ends at its place's right edge
};

struct PlacedLane
{
    QStringList title; //!< lines
    double top = 0;
    double height = 0;
    QVector<PlacedItem> items;
};

struct Layout
{
    double width = 0;
    double height = 0; //!< down to the end of the last lane
    double plotLeft = 0;
    double plotRight = 0;
    double lanesTop = 0;
    double endMs = 1;
    QVector<PlacedLane> lanes;
    QVector<double> ticks; //!< milliseconds

    double x(double ms) const { return plotLeft + (plotRight - plotLeft) * ms / endMs; }
};

/** `top`: where the lanes begin, below the title and the axis' numbers. */
Layout layOut(const Lanes& lanes, double width, double top);

/** How wide a text of this size is at most, in a usual font without serifs. */
double textWidth(const QString& text, double size, bool bold = false);
/** Cut off at the end with an ellipsis where it is wider. */
QString shortened(const QString& text, double size, double width, bool bold = false);
/** Broken between words. */
QStringList wrapped(const QString& text, double size, double width, bool bold = false);

/** Font sizes of the picture. */
constexpr double labelSize = 11;
constexpr double laneTitleSize = 12;

} // namespace shell::story
