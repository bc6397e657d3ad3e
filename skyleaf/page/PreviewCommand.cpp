#include "page/PreviewCommand.h"

#include "page/DocsUrl.h"

#include <QUrl>

#include <algorithm>

namespace previewcommand {
namespace {

enum Position { UrlPosition = 1, SuffixPosition = 3, EncodedUrlPosition = 6 };

bool isPositiveNumber(const QString& text)
{
    const auto isDigit = [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); };
    return std::all_of(text.begin(), text.end(), isDigit) && text.toLongLong() > 0;
}

QByteArray decodedBase64(const QString& text)
{
    const auto result =
        QByteArray::fromBase64Encoding(text.toUtf8(), QByteArray::AbortOnBase64DecodingErrors);
    return result ? *result : QByteArray();
}

/** Empty when the bytes are no UTF-8. */
QString utf8Text(const QByteArray& bytes)
{
    const QString text = QString::fromUtf8(bytes);
    return text.toUtf8() == bytes ? text : QString();
}

QString urlOf(const QStringList& parts)
{
    const bool isEncoded = parts.contains(QLatin1String("percentencoding"), Qt::CaseInsensitive);
    const QString encoded = isEncoded ? parts.value(EncodedUrlPosition) : QString();
    return encoded.isEmpty() ? utf8Text(decodedBase64(parts.value(UrlPosition)))
                             : utf8Text(QByteArray::fromPercentEncoding(decodedBase64(encoded)));
}

QString fileIdIn(const QStringList& parts)
{
    const auto found =
        std::find_if(std::min(parts.begin() + SuffixPosition, parts.end()), parts.end(), &isPositiveNumber);
    return found == parts.end() ? QString() : *found;
}

/** A number at the end of the URL's path. */
QString fileIdAtEndOf(const QString& url)
{
    int separator = url.lastIndexOf(QLatin1Char('/'));
    if (separator < 0)
        separator = url.lastIndexOf(QLatin1Char('\\'));
    if (separator <= 0)
        return {};
    const QString segment = url.mid(separator + 1).section(QLatin1Char('?'), 0, 0);
    return isPositiveNumber(segment) ? segment : QString();
}

/** The parts behind a marker; empty without it. */
QStringList partsBehind(const QStringList& parts, const QString& marker)
{
    const int index = parts.indexOf(marker);
    return index < 0 ? QStringList() : parts.mid(index + 1);
}

} // namespace

bool isPreviewCommand(const QString& text)
{
    return text.startsWith(QLatin1String("previewCloudDoc"), Qt::CaseInsensitive);
}

PreviewCommand parse(const QStringList& parts)
{
    PreviewCommand command;
    command.url = urlOf(parts);
    command.suffix = parts.value(SuffixPosition);
    command.fileId = fileIdIn(parts);
    if (command.fileId.isEmpty())
        command.fileId = fileIdAtEndOf(command.url);
    command.from = docsurl::enterSourceOf(command.url);
    command.newPage = parts.contains(QLatin1String("newpage"), Qt::CaseInsensitive);
    const QStringList wish = partsBehind(parts, QStringLiteral("createSubPage"));
    command.createSubPage =
        wish.isEmpty() || wish.first().compare(QLatin1String("true"), Qt::CaseInsensitive) == 0;
    command.pathParts = partsBehind(parts, QStringLiteral("filePath"));
    return command;
}

QString recoverPath(const QStringList& pathParts, const std::function<bool(const QString&)>& fileExists)
{
    QString path;
    for (const QString& part : pathParts) {
        path = path.isNull() ? part : path + QLatin1Char('/') + part;
        if (fileExists(path))
            return path;
    }
    return {};
}

} // namespace previewcommand

bool PreviewCommand::canBeOpened() const
{
    return !url.isEmpty() && !fileId.isEmpty() && !QUrl(url).host().isEmpty();
}
