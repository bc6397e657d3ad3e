#include "http/RequestTarget.h"

#include <algorithm>

#include <QUrl>

namespace documents {
namespace {

bool hasBrokenEscape(const QByteArray& text)
{
    const auto isHex = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
    };
    for (auto at = text.indexOf('%'); at >= 0; at = text.indexOf('%', at + 1)) {
        if (at + 2 >= text.size() || !isHex(text.at(at + 1)) || !isHex(text.at(at + 2)))
            return true;
    }
    return false;
}

QByteArray withoutOrigin(const QByteArray& target)
{
    const QByteArray lower = target.left(8).toLower();
    if (!lower.startsWith("http://") && !lower.startsWith("https://"))
        return target;
    const auto authority = target.indexOf("//") + 2;
    const auto path = target.indexOf('/', authority);
    return path < 0 ? QByteArrayLiteral("/") : target.mid(path);
}

bool isReadable(const QString& segment)
{
    return std::none_of(segment.begin(), segment.end(), [](QChar c) {
        return c == QChar::ReplacementCharacter || c.category() == QChar::Other_Control;
    });
}

} // namespace

QString RequestTarget::queryValue(const QString& name) const
{
    return query.queryItemValue(name, QUrl::FullyDecoded);
}

std::optional<RequestTarget> parseRequestTarget(const QByteArray& target)
{
    const QByteArray text = withoutOrigin(target);
    if (!text.startsWith('/') || hasBrokenEscape(text))
        return std::nullopt;

    const auto queryMark = text.indexOf('?');
    RequestTarget parsed;
    if (queryMark >= 0)
        parsed.query = QUrlQuery(QString::fromUtf8(text.mid(queryMark + 1)));

    auto parts = (queryMark < 0 ? text : text.left(queryMark)).mid(1).split('/');
    if (parts.last().isEmpty())
        parts.removeLast();
    for (const QByteArray& part : qAsConst(parts)) {
        const QByteArray decoded = QByteArray::fromPercentEncoding(part);
        const QString segment = QString::fromUtf8(decoded.constData(), decoded.size()); // a NUL included
        if (!isReadable(segment))
            return std::nullopt;
        parsed.segments.append(segment);
    }
    return parsed;
}

} // namespace documents
