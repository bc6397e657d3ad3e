#include "gateway/Answers.h"

#include "gateway/CacheRules.h"
#include "gateway/HeaderRules.h"
#include "gateway/LocalFiles.h"
#include "gateway/MimeTypes.h"
#include "gateway/ViewRegistry.h"

#include <boost/beast/http/status.hpp>

namespace gateway {
namespace {

using AnsweredBy = GatewayRequestRecord::AnsweredBy;

std::string_view viewOf(const QByteArray& bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

void appendLine(std::string& out, std::string_view name, std::string_view value)
{
    out.append(name).append(": ").append(value).append("\r\n");
}

std::string statusLine(int status)
{
    const auto reason = boost::beast::http::obsolete_reason(static_cast<boost::beast::http::status>(status));
    std::string line;
    line.reserve(320);
    return line.append("HTTP/1.1 ")
        .append(std::to_string(status))
        .append(" ")
        .append(reason.data(), reason.size())
        .append("\r\n");
}

/** Ends the head. `size` is that of the body, which a HEAD request does not get. */
void finishHead(Answer& answer, qint64 size, const AnswerForm& form)
{
    appendLine(answer.head, "Content-Length", std::to_string(size));
    answer.head.append(form.connectionLine).append("\r\n");
    answer.bodyBytes = form.headOnly ? 0 : size;
    if (form.headOnly) {
        answer.body.clear();
        answer.file = FileHandle();
    }
}

/** The headers of a handler's answer that can stand in the message, and what of them matters here. */
struct HandlerHeaders
{
    explicit HandlerHeaders(const QVariantMap& headers);

    std::string lines;        //!< complete, without those about caching
    std::string cachingLines; //!< the latter
    std::string contentType;
    bool hasCacheControl = false;
    bool hasTag = false;
};

HandlerHeaders::HandlerHeaders(const QVariantMap& headers)
{
    using boost::beast::http::field;
    for (auto header = headers.constBegin(); header != headers.constEnd(); ++header) {
        const QByteArray name = header.key().toUtf8();
        const boost::beast::string_view boostName(name.constData(), static_cast<std::size_t>(name.size()));
        const field id = boost::beast::http::string_to_field(boostName);
        if (id == field::content_length || !isHeaderName(viewOf(name)) || isHopByHop(id, viewOf(name)))
            continue;
        const QByteArray bytes = header.value().userType() == QMetaType::QByteArray
                                     ? header.value().toByteArray()
                                     : header.value().toString().toUtf8();
        if (id == field::set_cookie) { // several cookies are the lines of one value, and headers of their own
            for (const QByteArray& cookie : bytes.split('\n'))
                appendLine(lines, viewOf(name), singleLine(viewOf(cookie)));
            continue;
        }
        const std::string value = singleLine(viewOf(bytes));
        const bool aboutCaching = id == field::cache_control || id == field::expires || id == field::pragma ||
                                  id == field::etag || id == field::last_modified;
        appendLine(aboutCaching ? cachingLines : lines, viewOf(name), value);
        if (id == field::content_type)
            contentType = value;
        hasCacheControl = hasCacheControl || id == field::cache_control;
        hasTag = hasTag || id == field::etag;
    }
}

std::string_view typeOfHandlerAnswer(std::string_view path)
{
    return isApiPath(path) ? "application/json" : mimeTypeOfPath(path);
}

std::string cachingLines(const LocalFile& file, std::string_view path)
{
    std::string lines;
    appendLine(lines, "Cache-Control", cacheControl(cachingOfFile({path, {}, file.size})));
    appendLine(lines, "ETag", file.etag);
    appendLine(lines, "Last-Modified", file.lastModified);
    return lines;
}

Answer unchanged(std::string_view headerLines, const AnswerForm& form)
{
    Answer result;
    result.by = AnsweredBy::Local;
    result.status = 304;
    result.head = statusLine(304).append(headerLines).append(form.connectionLine).append("\r\n");
    return result;
}

} // namespace

QByteArray bodyOfHandlerAnswer(const QVariantMap& answer)
{
    const auto body = answer.constFind(QStringLiteral("resourceData"));
    return body == answer.constEnd() ? QByteArray() : body->toByteArray();
}

Answer handlerAnswer(const QVariantMap& answer, std::string_view path, const AnswerForm& form)
{
    Answer result;
    result.by = AnsweredBy::Local;
    result.body = bodyOfHandlerAnswer(answer);
    HandlerHeaders headers(answer.value(QStringLiteral("headerMap")).toMap());
    if (headers.contentType.empty()) {
        headers.contentType = typeOfHandlerAnswer(path);
        appendLine(headers.lines, "Content-Type", headers.contentType);
    }

    const LocalContent content{path, headers.contentType, result.body.size()};
    if (!form.reads || isForOneMoment(content)) {
        headers.cachingLines.clear();
        appendLine(headers.cachingLines, "Cache-Control", cacheControl(Caching::Never));
    } else if (!headers.hasCacheControl) {
        const Caching caching = cachingOfHandlerAnswer(content);
        appendLine(headers.cachingLines, "Cache-Control", cacheControl(caching));
        if (caching == Caching::Revalidate && !headers.hasTag) {
            const std::string tag = contentTag(result.body);
            appendLine(headers.cachingLines, "ETag", tag);
            if (listsTag(form.ifNoneMatch, tag))
                return unchanged(headers.cachingLines, form);
        }
    }
    result.status = 200;
    result.head = statusLine(200).append(headers.lines).append(headers.cachingLines);
    finishHead(result, result.body.size(), form);
    return result;
}

Answer fileAnswer(LocalFile file, std::string_view path, const AnswerForm& form)
{
    Answer result;
    result.by = AnsweredBy::Local;
    result.status = 200;
    result.head = statusLine(200);
    appendLine(result.head, "Content-Type", mimeTypeOfPath(path));
    result.head.append(cachingLines(file, path));
    result.file = std::move(file.handle);
    finishHead(result, file.size, form);
    return result;
}

Answer unchangedFileAnswer(const LocalFile& file, std::string_view path, const AnswerForm& form)
{
    return unchanged(cachingLines(file, path), form);
}

Answer replyAnswer(OneTimeReply reply, const AnswerForm& form)
{
    Answer result;
    result.by = AnsweredBy::Local;
    result.status = 200;
    result.head = statusLine(200);
    appendLine(result.head, "Content-Type",
               reply.contentType.isEmpty() ? "application/octet-stream"
                                           : singleLine(viewOf(reply.contentType)));
    appendLine(result.head, "Cache-Control", "no-store");
    result.body = std::move(reply.body);
    finishHead(result, result.body.size(), form);
    return result;
}

Answer errorAnswer(int status, std::string_view text, const AnswerForm& form, std::string_view headerLines)
{
    Answer result;
    result.status = status;
    result.head = statusLine(status);
    result.head.append(headerLines);
    appendLine(result.head, "Content-Type", "text/plain; charset=utf-8");
    appendLine(result.head, "Cache-Control", "no-store");
    result.body = QByteArray(text.data(), static_cast<int>(text.size()));
    finishHead(result, result.body.size(), form);
    return result;
}

} // namespace gateway
