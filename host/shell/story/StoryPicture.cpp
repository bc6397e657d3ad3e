#include "shell/story/StoryPicture.h"

#include "shell/story/StoryLayout.h"
#include "shell/story/StoryPalette.h"
#include "shell/story/StoryTexts.h"

#include <QXmlStreamWriter>

#include <algorithm>

namespace shell::story {

namespace {

constexpr double margin = 24;
constexpr double titleSize = 20;
constexpr double summarySize = 12;
constexpr double titleBaseline = 38;
constexpr double summaryBaseline = 60;
constexpr double axisBaseline = 88;
constexpr double lanesTop = 96;
constexpr double lineHeight = 17;
constexpr int mostTroubles = 8;

QString number(double value)
{
    return QString::number(value, 'f', 1);
}

struct LegendEntry
{
    Tone tone;
    QString words;
    QPointF place; //!< from the legend's top
};

constexpr double swatch = 10;
constexpr double swatchGap = 5;

QVector<Tone> usedTones(const Lanes& lanes)
{
    QVector<Tone> used;
    for (const Lane& lane : lanes.lanes) {
        for (const LaneItem& item : lane.items) {
            used.append(item.tone);
            if (item.waitedUntilMs)
                used.append(Tone::Wait);
        }
    }
    return used;
}

/** The tones that the picture has, with their meanings, in lines. */
QVector<LegendEntry> legendOf(const Lanes& lanes, double width)
{
    const QVector<LegendEntry> all = {
        {Tone::Shell, QStringLiteral("the shell's work"), {}},
        {Tone::Server, QStringLiteral("asked by the add-on, ahead of the page"), {}},
        {Tone::Local, QStringLiteral("answered on this computer"), {}},
        {Tone::Network, QStringLiteral("over the network"), {}},
        {Tone::Wait, QStringLiteral("waiting; an arrow comes from what ended it"), {}},
        {Tone::Ready, QStringLiteral("the document in the browser"), {}},
        {Tone::Trouble, QStringLiteral("error or refusal"), {}},
    };
    constexpr double gap = 14;
    const QVector<Tone> used = usedTones(lanes);
    QVector<LegendEntry> result;
    QPointF place(margin, 0);
    for (LegendEntry entry : all) {
        if (!used.contains(entry.tone))
            continue;
        const double length = swatch + swatchGap + textWidth(entry.words, labelSize);
        if (place.x() + length > width - margin)
            place = QPointF(margin, place.y() + lineHeight);
        entry.place = place;
        result.append(entry);
        place.rx() += length + gap;
    }
    return result;
}

class Writer
{
public:
    Writer(const OpenStory& story, const PictureOptions& options);
    QByteArray write();

private:
    void begin();
    void writeHead();
    void writeAxis();
    void writeBands();
    void writeArrows();
    void writeItems();
    void writeItem(const PlacedItem& placed);
    void writePoint(const PlacedItem& placed);
    void writeReadyLine();
    void writeTroubles(double top);
    void writeLegend();

    void rect(const QRectF& place, const char* fill, double radius = 0, double opacity = 1);
    void line(double x1, double y1, double x2, double y2, const char* stroke, double width,
              bool dashed = false);
    void path(const QString& data, const char* fill);
    void text(double x, double baseline, const QString& words, double size, const char* fill,
              bool bold = false, const char* anchor = "start");
    void attribute(const char* name, const QString& value)
    {
        m_xml.writeAttribute(QLatin1String(name), value);
    }

    const OpenStory& m_story;
    const Palette& m_colours;
    Lanes m_lanes;
    Layout m_layout;
    QStringList m_troubles; //!< lines
    QVector<LegendEntry> m_legend;
    double m_legendTop = 0;
    double m_height = 0;
    QByteArray m_bytes;
    QXmlStreamWriter m_xml;
};

QStringList troubleLines(const OpenStory& story, double width)
{
    QStringList lines;
    const int shown = std::min(mostTroubles, story.troubles.size());
    for (int i = 0; i < shown; ++i) {
        const Trouble& trouble = story.troubles.at(i);
        const QString head =
            QStringLiteral("%1. After %2: ").arg(i + 1).arg(durationText(std::max(0.0, trouble.atMs)));
        lines += wrapped(head + trouble.text, summarySize, width);
    }
    if (story.troubles.size() > shown)
        lines.append(QStringLiteral("and %1 more").arg(story.troubles.size() - shown));
    return lines;
}

Writer::Writer(const OpenStory& story, const PictureOptions& options)
    : m_story(story)
    , m_colours(options.dark ? darkPalette : lightPalette)
    , m_lanes(lanesOf(story))
    , m_layout(layOut(m_lanes, std::max(options.width, leastPictureWidth), lanesTop))
    , m_troubles(troubleLines(story, m_layout.width - 2 * margin))
    , m_legend(legendOf(m_lanes, m_layout.width))
    , m_xml(&m_bytes)
{
    constexpr double gap = 18;
    const double troublesHeight = m_troubles.isEmpty() ? 0 : gap + lineHeight * m_troubles.size();
    m_legendTop = m_layout.height + troublesHeight + gap;
    m_height = m_legendTop + (m_legend.isEmpty() ? 0 : m_legend.last().place.y()) + swatch + gap;
}

QByteArray Writer::write()
{
    begin();
    writeHead();
    writeBands();
    writeAxis();
    writeReadyLine();
    writeArrows();
    writeItems();
    writeTroubles(m_layout.height + lineHeight + 6);
    writeLegend();
    m_xml.writeEndDocument();
    return m_bytes;
}

void Writer::begin()
{
    m_xml.setAutoFormatting(true);
    m_xml.setAutoFormattingIndent(1);
    m_xml.writeStartDocument();
    m_xml.writeStartElement(QStringLiteral("svg"));
    m_xml.writeDefaultNamespace(QStringLiteral("http://www.w3.org/2000/svg"));
    attribute("width", number(m_layout.width));
    attribute("height", number(m_height));
    attribute("viewBox", QStringLiteral("0 0 %1 %2").arg(number(m_layout.width), number(m_height)));
    attribute("font-family", QStringLiteral("Inter, Helvetica, Arial, 'DejaVu Sans', sans-serif"));
    attribute("role", QStringLiteral("img"));
    m_xml.writeTextElement(QStringLiteral("title"), titleText(m_story));
    m_xml.writeTextElement(QStringLiteral("desc"), summaryText(m_story));
}

void Writer::writeHead()
{
    rect(QRectF(0, 0, m_layout.width, m_height), m_colours.background);
    const double room = m_layout.width - 2 * margin;
    text(margin, titleBaseline, shortened(titleText(m_story), titleSize, room, true), titleSize,
         m_colours.text, true);
    QString summary = summaryText(m_story);
    const int later = m_lanes.leftOut + m_story.laterLocal + m_story.laterNetwork;
    if (later > 0)
        summary += QStringLiteral(" · %1 came later than is shown").arg(later);
    text(margin, summaryBaseline, shortened(summary, summarySize, room), summarySize, m_colours.muted);
}

void Writer::writeAxis()
{
    for (const double tick : m_layout.ticks) {
        const double x = m_layout.x(tick);
        line(x, lanesTop, x, m_layout.height, m_colours.grid, 1);
        const QString words = QStringLiteral("%1 ms").arg(qRound64(tick));
        const bool fits = x + textWidth(words, labelSize) / 2 <= m_layout.width;
        text(fits ? x : m_layout.width - 2, axisBaseline, words, labelSize, m_colours.muted, false,
             fits ? "middle" : "end");
    }
}

void Writer::writeBands()
{
    constexpr double titleLine = 16;
    for (int i = 0; i < m_layout.lanes.size(); ++i) {
        const PlacedLane& lane = m_layout.lanes.at(i);
        if (i % 2 == 0)
            rect(QRectF(0, lane.top, m_layout.width, lane.height), m_colours.band);
        double baseline = lane.top + lane.height / 2 - titleLine * (lane.title.size() - 1) / 2 + 4;
        for (const QString& each : lane.title) {
            text(margin, baseline, each, laneTitleSize, m_colours.text, true);
            baseline += titleLine;
        }
        if (lane.items.isEmpty())
            text(m_layout.plotLeft + 6, lane.top + lane.height / 2 + 4, QStringLiteral("nothing"), labelSize,
                 m_colours.muted);
    }
}

void Writer::writeReadyLine()
{
    if (m_story.readyMs && *m_story.readyMs <= m_layout.endMs) {
        const double x = m_layout.x(*m_story.readyMs);
        line(x, lanesTop, x, m_layout.height, m_colours.ready, 1.5, true);
    }
}

void Writer::writeArrows()
{
    constexpr double tip = 5;
    for (const Arrow& arrow : m_lanes.arrows) {
        const PlacedItem& from = m_layout.lanes.at(arrow.fromLane).items.at(arrow.fromItem);
        const PlacedItem& to = m_layout.lanes.at(arrow.toLane).items.at(arrow.toItem);
        const double x = std::min(m_layout.x(arrow.atMs), m_layout.plotRight);
        const bool down = to.bar.top() > from.bar.top();
        const double start = down ? from.bar.bottom() : from.bar.top();
        const double end = down ? to.bar.top() : to.bar.bottom();
        const double back = down ? -tip : tip;
        line(x, start, x, end + back, m_colours.wait, 1.5);
        path(QStringLiteral("M%1 %2 L%3 %4 L%5 %4 Z")
                 .arg(number(x), number(end), number(x - tip), number(end + 1.6 * back), number(x + tip)),
             m_colours.wait);
    }
}

void Writer::writeItems()
{
    for (int i = 0; i < m_layout.lanes.size(); ++i) {
        for (const PlacedItem& placed : m_layout.lanes.at(i).items) {
            // Lines of the axis and arrows must not run through the words.
            if (!placed.labelInside && !placed.text.isEmpty()) {
                QRectF behind = placed.label.adjusted(-2, 3, 2, -3);
                // The words are narrower than the room that is kept for them.
                const double usual = placed.label.width() * 0.88;
                placed.labelBefore ? behind.setLeft(behind.right() - usual) : behind.setWidth(usual);
                rect(behind, i % 2 == 0 ? m_colours.band : m_colours.background, 0, 0.9);
            }
        }
        for (const PlacedItem& placed : m_layout.lanes.at(i).items)
            writeItem(placed);
    }
}

void Writer::writeItem(const PlacedItem& placed)
{
    constexpr double radius = 2.5;
    constexpr double paleness = 0.35;
    m_xml.writeStartElement(QStringLiteral("g"));
    m_xml.writeTextElement(QStringLiteral("title"), placed.item.detail);
    const char* fill = m_colours.of(placed.item.tone);
    if (placed.item.isPoint) {
        writePoint(placed);
    } else if (placed.item.waitedUntilMs) {
        const double until =
            std::clamp(m_layout.x(*placed.item.waitedUntilMs), placed.bar.left(), placed.bar.right());
        rect(placed.bar, m_colours.wait, radius, paleness);
        QRectF rest = placed.bar;
        rest.setLeft(std::min(until, placed.bar.right() - 3));
        rect(rest, fill, radius);
    } else {
        rect(placed.bar, fill, radius, placed.item.tone == Tone::Wait ? 0.6 : 1);
    }
    const double baseline = placed.label.center().y() + 4;
    const bool onStrongColour = placed.labelInside && !placed.item.waitedUntilMs;
    const char* colour = onStrongColour ? m_colours.onBar : m_colours.text;
    if (placed.labelBefore)
        text(placed.label.right(), baseline, placed.text, labelSize, colour, false, "end");
    else
        text(placed.label.left(), baseline, placed.text, labelSize, colour);
    m_xml.writeEndElement();
}

void Writer::writePoint(const PlacedItem& placed)
{
    const QPointF centre = placed.bar.center();
    const double half = placed.bar.width() / 2;
    path(QStringLiteral("M%1 %2 L%3 %4 L%1 %5 L%6 %4 Z")
             .arg(number(centre.x()), number(centre.y() - half), number(centre.x() + half),
                  number(centre.y()), number(centre.y() + half), number(centre.x() - half)),
         m_colours.of(placed.item.tone));
}

void Writer::writeTroubles(double top)
{
    for (const QString& each : m_troubles) {
        text(margin, top, each, summarySize, m_colours.trouble);
        top += lineHeight;
    }
}

void Writer::writeLegend()
{
    for (const LegendEntry& entry : m_legend) {
        rect(QRectF(entry.place.x(), m_legendTop + entry.place.y(), swatch, swatch), m_colours.of(entry.tone),
             2);
        text(entry.place.x() + swatch + swatchGap, m_legendTop + entry.place.y() + swatch - 1, entry.words,
             labelSize, m_colours.muted);
    }
}

void Writer::rect(const QRectF& place, const char* fill, double radius, double opacity)
{
    m_xml.writeEmptyElement(QStringLiteral("rect"));
    attribute("x", number(place.x()));
    attribute("y", number(place.y()));
    attribute("width", number(place.width()));
    attribute("height", number(place.height()));
    if (radius > 0) {
        attribute("rx", number(radius));
        attribute("ry", number(radius));
    }
    attribute("fill", QLatin1String(fill));
    if (opacity < 1)
        attribute("fill-opacity", number(opacity));
}

void Writer::line(double x1, double y1, double x2, double y2, const char* stroke, double width, bool dashed)
{
    m_xml.writeEmptyElement(QStringLiteral("line"));
    attribute("x1", number(x1));
    attribute("y1", number(y1));
    attribute("x2", number(x2));
    attribute("y2", number(y2));
    attribute("stroke", QLatin1String(stroke));
    attribute("stroke-width", number(width));
    if (dashed)
        attribute("stroke-dasharray", QStringLiteral("4 3"));
}

void Writer::path(const QString& data, const char* fill)
{
    m_xml.writeEmptyElement(QStringLiteral("path"));
    attribute("d", data);
    attribute("fill", QLatin1String(fill));
}

void Writer::text(double x, double baseline, const QString& words, double size, const char* fill, bool bold,
                  const char* anchor)
{
    m_xml.writeStartElement(QStringLiteral("text"));
    attribute("x", number(x));
    attribute("y", number(baseline));
    attribute("font-size", number(size));
    attribute("fill", QLatin1String(fill));
    if (bold)
        attribute("font-weight", QStringLiteral("600"));
    if (qstrcmp(anchor, "start") != 0)
        attribute("text-anchor", QLatin1String(anchor));
    m_xml.writeCharacters(words);
    m_xml.writeEndElement();
}

} // namespace

QByteArray toSvg(const OpenStory& story, const PictureOptions& options)
{
    return Writer(story, options).write();
}

} // namespace shell::story
