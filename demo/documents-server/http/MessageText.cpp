#include "http/MessageText.h"

#include <sstream>

#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/write.hpp>

#include <QDateTime>
#include <QLocale>

#include "http/Replies.h"

namespace documents {
namespace {

namespace beast = boost::beast;
namespace http = boost::beast::http;

QByteArray toBytes(boost::string_view text)
{
    return {text.data(), static_cast<int>(text.size())};
}

beast::string_view toView(const QByteArray& bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

} // namespace

HttpRequest toRequest(const RequestHead& head)
{
    HttpRequest request;
    request.method = toBytes(head.method_string());
    request.target = toBytes(head.target());
    request.cookie = toBytes(head[http::field::cookie]);
    request.ifNoneMatch = toBytes(head[http::field::if_none_match]);
    request.ifModifiedSince = toBytes(head[http::field::if_modified_since]);
    for (const auto& field : head)
        request.headers.emplace_back(toBytes(field.name_string()), toBytes(field.value()));
    return request;
}

bool hasBody(int status)
{
    return status >= 200 && status != 204 && status != 304;
}

std::string headText(const HttpReply& reply, unsigned version, bool keepAlive)
{
    http::response<http::empty_body> head(static_cast<http::status>(reply.status), version);
    const QString date = QLocale::c().toString(QDateTime::currentDateTimeUtc(),
                                               QStringLiteral("ddd, dd MMM yyyy hh:mm:ss 'GMT'"));
    head.set(http::field::server, "skyleaf-documents-server");
    head.set(http::field::date, toView(date.toLatin1()));
    if (!reply.contentType.isEmpty())
        head.set(http::field::content_type, toView(reply.contentType));
    for (const auto& [name, value] : reply.headers)
        head.insert(toView(name), toView(value));
    if (hasBody(reply.status))
        head.content_length(static_cast<std::uint64_t>(reply.bodySize()));
    head.keep_alive(keepAlive);

    std::ostringstream text;
    text << head.base();
    return text.str();
}

std::optional<HttpReply> replyToBrokenRequest(const boost::system::error_code& error,
                                              const QByteArray& target)
{
    if (error == http::error::header_limit)
        return errorReply(target, 431, QStringLiteral("HeadTooLarge"),
                          QStringLiteral("The request's head is larger than 32 KiB."));
    const bool malformed = error.category() == make_error_code(http::error::bad_method).category() &&
                           error != http::error::end_of_stream && error != http::error::partial_message;
    if (malformed)
        return errorReply(
            target, 400, QStringLiteral("BadRequest"),
            QStringLiteral("The request is malformed: %1.").arg(QString::fromStdString(error.message())));
    return std::nullopt;
}

HttpReply tooLargeReply(const QByteArray& target, std::uint64_t limit)
{
    return errorReply(
        target, 413, QStringLiteral("TooLarge"),
        QStringLiteral("The request's body is larger than the %1 bytes possible here.").arg(limit));
}

} // namespace documents
