#include "nheliostat/documents/DocumentKind.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QJsonDocument>
#include <QTextCodec>

#include <algorithm>
#include <memory>

namespace {

constexpr qint64 probedBytes = 64LL * 1024;
constexpr qint64 mostPixels = 64LL * 1024 * 1024;

bool hasSuffix(const QString& path, std::initializer_list<const char*> suffixes)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return std::any_of(suffixes.begin(), suffixes.end(),
                       [&suffix](const char* known) { return suffix == QLatin1String(known); });
}

QTextCodec* codecOf(const QByteArray& start)
{
    return QTextCodec::codecForUtfText(start, QTextCodec::codecForName("UTF-8"));
}

bool isText(const QByteArray& start)
{
    QTextCodec* codec = codecOf(start);
    QTextCodec::ConverterState state;
    const QString text = codec->toUnicode(start.constData(), start.size(), &state);
    // A character that is cut at the end counts as remaining, not as invalid.
    return state.invalidChars == 0 && !text.contains(QChar::Null);
}

bool isShownImage(const QString& path)
{
    QImageReader reader(path);
    const QSize size = reader.size();
    return reader.canRead() && size.isValid() && size.width() * qint64(size.height()) <= mostPixels;
}

} // namespace

DocumentKind documentKindOf(const QString& path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return DocumentKind::Missing;
    const bool text = isText(file.read(probedBytes));
    if (text && hasSuffix(path, {"html", "htm"}))
        return DocumentKind::RichText;
    if (isShownImage(path))
        return DocumentKind::Image;
    return text ? DocumentKind::Text : DocumentKind::Other;
}

TextStart readTextStart(const QString& path, qint64 longest)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.read(longest);
    TextStart start;
    start.isCut = !file.atEnd();
    const QJsonDocument json =
        hasSuffix(path, {"json"}) && !start.isCut ? QJsonDocument::fromJson(bytes) : QJsonDocument();
    if (!json.isNull()) {
        start.text = QString::fromUtf8(json.toJson(QJsonDocument::Indented));
        return start;
    }
    const std::unique_ptr<QTextDecoder> decoder(codecOf(bytes)->makeDecoder());
    start.text = decoder->toUnicode(bytes);
    return start;
}
