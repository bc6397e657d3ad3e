#include "shell/story/StoryFiles.h"

#include "shell/story/StoryJson.h"
#include "shell/story/StoryPicture.h"

#include "nrt/files.h"

#include <QBuffer>
#include <QFileInfo>
#include <QJsonDocument>
#include <QPainter>
#include <QSvgRenderer>

namespace shell {

namespace {

QByteArray pngOf(const QByteArray& svg)
{
    constexpr double scale = 2;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    storyImage(svg, scale).save(&buffer, "PNG");
    return bytes;
}

} // namespace

QImage storyImage(const QByteArray& svg, double scale)
{
    QSvgRenderer renderer(svg);
    QImage image(renderer.defaultSize() * scale, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    renderer.render(&painter);
    return image;
}

QString saveStory(const story::OpenStory& openStory, const QString& file, bool dark)
{
    story::PictureOptions options;
    options.dark = dark;
    const QString ending = QFileInfo(file).suffix().toLower();
    QByteArray bytes;
    if (ending == QLatin1String("svg"))
        bytes = story::toSvg(openStory, options);
    else if (ending == QLatin1String("png"))
        bytes = pngOf(story::toSvg(openStory, options));
    else if (ending == QLatin1String("json"))
        bytes = QJsonDocument(story::toJson(openStory)).toJson();
    else
        return QStringLiteral("a story is written to .svg, .png or .json, not to %1").arg(file);
    const QString reason = nrt::files::replace(file, bytes);
    return reason.isEmpty() ? QString() : QStringLiteral("cannot write %1: %2").arg(file, reason);
}

} // namespace shell
