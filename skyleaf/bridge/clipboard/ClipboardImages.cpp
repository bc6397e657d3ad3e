#include "bridge/clipboard/ClipboardImages.h"

#include "base/NDocsLog.h"

#include <QBuffer>
#include <QImageReader>
#include <QMimeData>

#include <algorithm>

namespace clipboardimages {
namespace {

constexpr qint64 fewPoints = 1 << 18;

const QString pngType = QStringLiteral("image/png");

qint64 pointsOf(const QSize& size)
{
    return qint64(size.width()) * size.height();
}

/** How many points a picture file says it has; 0 for none. */
qint64 pointsIn(const QByteArray& file)
{
    QBuffer buffer;
    buffer.setData(file);
    const QSize size = QImageReader(&buffer).size();
    return size.isValid() ? pointsOf(size) : 0;
}

bool isWithin(qint64 points, qint64 most)
{
    if (points > most)
        ndocslog::warning(QStringLiteral("a picture of %1 points is left out").arg(points),
                          "clipboardimages::isWithin");
    return points <= most;
}

QImage decoded(const QByteArray& file, qint64 most)
{
    const qint64 points = pointsIn(file);
    return points > 0 && isWithin(points, most) ? QImage::fromData(file) : QImage();
}

/** A format of the content that is a picture file; empty without one. */
QString pictureFormat(const QMimeData& content)
{
    const QStringList formats = content.formats();
    if (formats.contains(pngType))
        return pngType;
    const QByteArrayList known = QImageReader::supportedMimeTypes();
    const auto found = std::find_if(formats.begin(), formats.end(), [&known](const QString& format) {
        return known.contains(format.toLatin1());
    });
    return found == formats.end() ? QString() : *found;
}

} // namespace

bool Source::isSmall() const
{
    return (image.isNull() ? pointsIn(encoded) : pointsOf(image.size())) <= fewPoints;
}

Source sourceOf(const QMimeData& content)
{
    Source source;
    if (!content.hasImage())
        return source;
    // Of another program's clipboard the image data would be decoded here; the file is not.
    const QString format = pictureFormat(content);
    if (!format.isEmpty())
        source.encoded = content.data(format);
    if (source.encoded.isEmpty())
        source.image = content.imageData().value<QImage>();
    return source;
}

QByteArray toPng(const Source& source)
{
    const QImage image = source.image.isNull() ? decoded(source.encoded, mostRead) : source.image;
    QByteArray png;
    QBuffer buffer(&png);
    return isWithin(pointsOf(image.size()), mostRead) && image.save(&buffer, "PNG") ? png : QByteArray();
}

bool areSmall(const QVector<QByteArray>& files)
{
    return std::all_of(files.begin(), files.end(),
                       [](const QByteArray& file) { return pointsIn(file) <= fewPoints; });
}

QImage lastOf(const QVector<QByteArray>& files)
{
    QImage image;
    for (auto file = files.rbegin(); file != files.rend() && image.isNull(); ++file)
        image = decoded(*file, mostPlaced);
    return image;
}

} // namespace clipboardimages
