#include "service/DriveDownload.h"

#include <QUrl>

#include "http/ByteRange.h"
#include "http/Replies.h"
#include "service/StaticSite.h"

namespace documents {
namespace {

RangeWish wishOf(const HttpRequest& request, const QByteArray& tag, qint64 size)
{
    const QByteArray condition = request.header("if-range").trimmed();
    if (request.method != "GET" || (!condition.isEmpty() && condition != tag))
        return {};
    return parseRange(request.header("range"), size);
}

} // namespace

QByteArray attachmentField(const QString& name)
{
    QByteArray plain;
    for (const QChar c : name)
        plain += c >= u' ' && c < u'\x7f' && c != u'"' && c != u'\\' && c != u'%' ? c.toLatin1() : '_';
    return "attachment; filename=\"" + plain + "\"; filename*=UTF-8''" +
           QUrl::toPercentEncoding(name, "!#$&+^`|");
}

HttpReply downloadReply(const OpenContent& content, const HttpRequest& request)
{
    const qint64 size = content.version.content.size;
    const QByteArray tag = '"' + content.version.content.sha1.toLatin1() + '"';
    const RangeWish wish = wishOf(request, tag, size);
    if (wish.kind == RangeKind::Unsatisfiable) {
        HttpReply reply = errorReply(request.target, 416, QStringLiteral("BadRange"),
                                     QStringLiteral("The file has %1 bytes.").arg(size));
        reply.headers.emplace_back("Content-Range", "bytes */" + QByteArray::number(size));
        return reply;
    }

    HttpReply reply;
    reply.headers = {{"ETag", tag}, {"Cache-Control", "no-cache"}, {"Accept-Ranges", "bytes"}};
    if (listsTag(request.ifNoneMatch, tag)) {
        reply.status = 304;
        return reply;
    }
    // Files are anybody's: none of them may act as a page of the site.
    reply.headers.emplace_back("X-Content-Type-Options", "nosniff");
    reply.headers.emplace_back("Content-Disposition", attachmentField(content.name));
    reply.contentType = mimeTypeOf(content.name);
    reply.file = content.file;
    reply.fileSize = size;
    if (wish.kind == RangeKind::Part) {
        const ByteRange& range = wish.range;
        reply.status = 206;
        reply.file->seek(range.first);
        reply.fileSize = range.length;
        reply.headers.emplace_back("Content-Range", "bytes " + QByteArray::number(range.first) + '-' +
                                                        QByteArray::number(range.first + range.length - 1) +
                                                        '/' + QByteArray::number(size));
    }
    return reply;
}

} // namespace documents
