#include "nheliostat/framework/FileIcon.h"

#include "nheliostat/NHelioSubPage.h"

#include <QHash>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

namespace {

/** The drawing of a kind and the suffixes and type letters of its files. */
struct Kind
{
    const char* drawing;
    const char* suffixes;
};

constexpr Kind kinds[] = {
    {"text", "w word onlinevlt doc docx docm dot dotx odt rtf txt md"},
    {"sheet", "s vs onlinevs xls xlsx xlsm xlt xltx csv ods"},
    {"slides", "p vpp onlinevpp ppt pptx pptm pps ppsx pot potx odp"},
    {"pdf", "f pdf onlinepdf"},
    {"note", "o otl mo motl"},
    {"smartsheet", "k nsheet"},
    {"database", "d db dbt"},
    {"diagram", "flow process vsd vsdx"},
    {"picture", "png jpg jpeg gif bmp webp svg tif tiff"},
    {"archive", "zip rar 7z tar gz xz"},
};

/** Empty for a suffix that no kind is known for. */
QString drawingOf(const QString& suffix)
{
    static const QHash<QString, QString> drawings = [] {
        QHash<QString, QString> all;
        for (const Kind& kind : kinds) {
            const QStringList suffixes = QString::fromLatin1(kind.suffixes).split(u' ');
            for (const QString& each : suffixes)
                all.insert(each, QString::fromLatin1(kind.drawing));
        }
        return all;
    }();
    return drawings.value(suffix.toLower());
}

QIcon draw(const QString& drawing)
{
    QSvgRenderer svg(QStringLiteral(":/nheliostat/shell/files/%1.svg").arg(drawing));
    QIcon icon;
    for (const int side : {16, 24, 32, 48}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        svg.render(&painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

QIcon iconOf(const QString& drawing)
{
    // The tabs ask again and again. Never destroyed: pixmaps must not go after the application object.
    static auto& icons = *new QHash<QString, QIcon>;
    QIcon& icon = icons[drawing];
    if (icon.isNull())
        icon = draw(drawing);
    return icon;
}

} // namespace

QIcon knownFileIcon(const QString& suffix)
{
    const QString drawing = drawingOf(suffix);
    return drawing.isEmpty() ? QIcon() : iconOf(drawing);
}

QIcon helioFileIcon(const QString& suffix)
{
    if (suffix.isEmpty())
        return {};
    const QIcon known = knownFileIcon(suffix);
    return known.isNull() ? iconOf(QStringLiteral("other")) : known;
}
