#include "nheliostat/NHelioSubPage.h"

#include <QHash>
#include <QPainter>
#include <QPixmap>

namespace {

struct Kind
{
    QRgb colour;
    QChar letter;
};

/** A sheet in the colour of its kind with the kind's letter; other files are grey with their first letter. */
Kind kindOf(const QString& suffix)
{
    static const QHash<QString, Kind> kinds = [] {
        QHash<QString, Kind> all;
        const auto add = [&all](const char* suffixes, Kind kind) {
            const QStringList names = QString::fromLatin1(suffixes).split(QLatin1Char(' '));
            for (const QString& name : names)
                all.insert(name, kind);
        };
        add("w doc docx odt rtf txt word otl o", {0xff2f6fd6, QLatin1Char('W')});
        add("s k xls xlsx xlsm csv ods vs nsheet", {0xff2e8b57, QLatin1Char('S')});
        add("p ppt pptx odp vpp", {0xffd2691e, QLatin1Char('P')});
        add("f pdf", {0xffc0392b, QLatin1Char('F')});
        return all;
    }();
    return kinds.value(suffix, {0xff7f8c8d, suffix.at(0).toUpper()});
}

} // namespace

QIcon helioFileIcon(const QString& suffix)
{
    if (suffix.isEmpty())
        return {};
    const Kind kind = kindOf(suffix.toLower());
    QIcon icon;
    for (const int size : {16, 32}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(kind.colour));
        painter.drawRoundedRect(QRectF(size / 8.0, 0, size * 0.75, size), size / 8.0, size / 8.0);
        QFont font = painter.font();
        font.setBold(true);
        font.setPixelSize(size * 5 / 8);
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(pixmap.rect(), Qt::AlignCenter, QString(kind.letter));
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}
