#include "gateway/Answers.h"

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

/** Appends the handler's header; true when it was the Content-Type. */
bool appendHandlerHeader(std::string& head, const QByteArray& name, const QVariant& value)
{
    const boost::beast::string_view boostName(name.constData(), static_cast<std::size_t>(name.size()));
    const auto id = boost::beast::http::string_to_field(boostName);
    if (id == boost::beast::http::field::content_length || !isHeaderName(viewOf(name)) ||
        isHopByHop(id, viewOf(name)))
        return false;
    const QByteArray bytes =
        value.userType() == QMetaType::QByteArray ? value.toByteArray() : value.toString().toUtf8();
    appendLine(head, viewOf(name), singleLine(viewOf(bytes)));
    return id == boost::beast::http::field::content_type;
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
    result.status = 200;
    result.body = bodyOfHandlerAnswer(answer);
    result.head = statusLine(200);

    bool typed = false;
    const QVariantMap headers = answer.value(QStringLiteral("headerMap")).toMap();
    for (auto header = headers.constBegin(); header != headers.constEnd(); ++header)
        typed = appendHandlerHeader(result.head, header.key().toUtf8(), header.value()) || typed;
    if (!typed)
        appendLine(result.head, "Content-Type", mimeTypeOfPath(path));
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
    appendLine(result.head, "ETag", file.etag);
    appendLine(result.head, "Last-Modified", file.lastModified);
    // Kept by the browser, but asked about each time: a package may be replaced under the same URL.
    appendLine(result.head, "Cache-Control", "no-cache");
    result.file = std::move(file.handle);
    finishHead(result, file.size, form);
    return result;
}

Answer unchangedFileAnswer(const LocalFile& file, const AnswerForm& form)
{
    Answer result;
    result.by = AnsweredBy::Local;
    result.status = 304;
    result.head = statusLine(304);
    appendLine(result.head, "ETag", file.etag);
    appendLine(result.head, "Last-Modified", file.lastModified);
    appendLine(result.head, "Cache-Control", "no-cache");
    result.head.append(form.connectionLine).append("\r\n");
    return result;
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
