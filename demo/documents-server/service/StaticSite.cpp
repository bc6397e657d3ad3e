#include "service/StaticSite.h"

#include <algorithm>
#include <array>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

namespace documents {
namespace {

struct MimeType
{
    QLatin1String suffix;
    const char* type;
};

constexpr std::array<MimeType, 19> mimeTypes = {{
    {QLatin1String("html"), "text/html; charset=utf-8"},
    {QLatin1String("js"), "text/javascript; charset=utf-8"},
    {QLatin1String("mjs"), "text/javascript; charset=utf-8"},
    {QLatin1String("css"), "text/css; charset=utf-8"},
    {QLatin1String("json"), "application/json; charset=utf-8"},
    {QLatin1String("map"), "application/json; charset=utf-8"},
    {QLatin1String("txt"), "text/plain; charset=utf-8"},
    {QLatin1String("svg"), "image/svg+xml"},
    {QLatin1String("png"), "image/png"},
    {QLatin1String("jpg"), "image/jpeg"},
    {QLatin1String("jpeg"), "image/jpeg"},
    {QLatin1String("gif"), "image/gif"},
    {QLatin1String("webp"), "image/webp"},
    {QLatin1String("ico"), "image/x-icon"},
    {QLatin1String("woff"), "font/woff"},
    {QLatin1String("woff2"), "font/woff2"},
    {QLatin1String("ttf"), "font/ttf"},
    {QLatin1String("wasm"), "application/wasm"},
    {QLatin1String("zip"), "application/zip"},
}};

const QString httpDateFormat = QStringLiteral("ddd, dd MMM yyyy hh:mm:ss 'GMT'");

const QString serviceWorkerScript = QStringLiteral("sw.js");

bool isPlainSegment(const QString& segment)
{
    return !segment.isEmpty() && segment != QLatin1String(".") && segment != QLatin1String("..") &&
           !segment.contains(u'/') && !segment.contains(u'\\');
}

bool isKnown(const HttpRequest& request, const QByteArray& tag, qint64 modified)
{
    if (!request.ifNoneMatch.isEmpty())
        return listsTag(request.ifNoneMatch, tag);
    const auto since = fromHttpDate(request.ifModifiedSince);
    return since && modified <= *since;
}

} // namespace

QByteArray entityTag(qint64 size, qint64 modified)
{
    return '"' + QByteArray::number(size, 16) + '-' + QByteArray::number(modified, 16) + '"';
}

bool listsTag(const QByteArray& ifNoneMatch, const QByteArray& tag)
{
    const auto listed = ifNoneMatch.split(',');
    return std::any_of(listed.begin(), listed.end(), [&tag](const QByteArray& item) {
        const QByteArray text = item.trimmed();
        return text == "*" || (text.startsWith("W/") ? text.mid(2) : text) == tag;
    });
}

QByteArray mimeTypeOf(const QString& fileName)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    const auto* found = std::find_if(mimeTypes.begin(), mimeTypes.end(),
                                     [&suffix](const MimeType& type) { return type.suffix == suffix; });
    return found == mimeTypes.end() ? QByteArrayLiteral("application/octet-stream") : QByteArray(found->type);
}

QByteArray toHttpDate(qint64 secondsSinceEpoch)
{
    const QDateTime time = QDateTime::fromSecsSinceEpoch(secondsSinceEpoch, Qt::UTC);
    return QLocale::c().toString(time, httpDateFormat).toLatin1();
}

std::optional<qint64> fromHttpDate(const QByteArray& text)
{
    QDateTime time = QLocale::c().toDateTime(QString::fromLatin1(text), httpDateFormat);
    if (!time.isValid())
        return std::nullopt;
    time.setTimeSpec(Qt::UTC);
    return time.toSecsSinceEpoch();
}

StaticSite::StaticSite(QString directory)
    : m_directory(std::move(directory))
{
}

std::optional<QString> StaticSite::resolve(const QStringList& segments) const
{
    if (segments.isEmpty() || !std::all_of(segments.begin(), segments.end(), isPlainSegment))
        return std::nullopt;
    const QString root = QFileInfo(m_directory).canonicalFilePath();
    const QFileInfo file(QFileInfo(root + QLatin1Char('/') + segments.join(u'/')).canonicalFilePath());
    if (root.isEmpty() || !file.isFile() || !file.filePath().startsWith(root + QLatin1Char('/')))
        return std::nullopt;
    return file.filePath();
}

std::optional<HttpReply> StaticSite::file(const QStringList& segments, const HttpRequest& request) const
{
    const auto path = resolve(segments);
    if (!path)
        return std::nullopt;
    QFile file(*path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;

    const qint64 modified = file.fileTime(QFileDevice::FileModificationTime).toMSecsSinceEpoch();
    const QByteArray tag = entityTag(file.size(), modified);
    HttpReply reply;
    reply.contentType = mimeTypeOf(*path);
    reply.headers = {
        {"ETag", tag}, {"Last-Modified", toHttpDate(modified / 1000)}, {"Cache-Control", "no-cache"}};
    if (segments == QStringList{serviceWorkerScript})
        reply.headers.emplace_back("Service-Worker-Allowed", "/");
    if (isKnown(request, tag, modified / 1000))
        reply.status = 304;
    else
        reply.body = file.readAll();
    return reply;
}

} // namespace documents
