#include "nheliostat/framework/ShellLook.h"

#include <QFile>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include <algorithm>

namespace {

QByteArray resource(const QString& path)
{
    QFile file(QStringLiteral(":/nheliostat/shell/") + path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool isIconName(const QString& name)
{
    return !name.isEmpty() &&
           std::all_of(name.begin(), name.end(), [](QChar c) { return c >= u'a' && c <= u'z'; });
}

} // namespace

QByteArray ShellLook::iconSvg(const QString& name, bool dark)
{
    if (!isIconName(name))
        return {};
    QByteArray svg = resource(QStringLiteral("icons/%1.svg").arg(name));
    return svg.replace("currentColor", dark ? "#aab4c0" : "#5c6773");
}

QIcon ShellLook::icon(const QString& name, bool dark)
{
    QSvgRenderer drawing(iconSvg(name, dark));
    if (!drawing.isValid())
        return {};
    QPixmap pixmap(drawing.defaultSize());
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    drawing.render(&painter);
    painter.end();
    return QIcon(pixmap);
}

QString ShellLook::styleSheet(bool dark)
{
    return QString::fromUtf8(resource(dark ? QStringLiteral("dark.qss") : QStringLiteral("light.qss")));
}
