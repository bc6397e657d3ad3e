#include "http/Replies.h"

#include <QJsonDocument>

namespace documents {
namespace {

QByteArray errorPage(int status, const QString& message)
{
    return QStringLiteral("<!DOCTYPE html>\n"
                          "<html lang=\"en\">\n"
                          "<head><meta charset=\"utf-8\"><title>%1</title>\n"
                          "<style>body{font:16px/1.5 sans-serif;max-width:36em;margin:4em auto;padding:0 1em}"
                          "</style></head>\n"
                          "<body><h1>This page is not available</h1><p>%2</p><p>Status %1. "
                          "<a href=\"/\">Go to the list of documents</a></p></body>\n"
                          "</html>\n")
        .arg(QString::number(status), message.toHtmlEscaped())
        .toUtf8();
}

} // namespace

HttpReply jsonReply(int status, const QJsonObject& object)
{
    return {status,
            QByteArrayLiteral("application/json; charset=utf-8"),
            QJsonDocument(object).toJson(QJsonDocument::Compact),
            {{QByteArrayLiteral("Cache-Control"), QByteArrayLiteral("no-store")}}};
}

bool isApiTarget(const QByteArray& target)
{
    return target.startsWith("/api/") || target.startsWith("/office-config/") ||
           target.startsWith("/_control");
}

HttpReply errorReply(const QByteArray& target, int status, const QString& result, const QString& message)
{
    if (isApiTarget(target))
        return jsonReply(status, {{QStringLiteral("result"), result}, {QStringLiteral("msg"), message}});
    return {status,
            QByteArrayLiteral("text/html; charset=utf-8"),
            errorPage(status, message),
            {{QByteArrayLiteral("Cache-Control"), QByteArrayLiteral("no-store")}}};
}

HttpReply methodNotAllowed(const QByteArray& target, const QByteArray& allowed)
{
    HttpReply reply =
        errorReply(target, 405, QStringLiteral("MethodNotAllowed"),
                   QStringLiteral("Only %1 is possible here.").arg(QString::fromLatin1(allowed)));
    reply.headers.emplace_back("Allow", allowed);
    return reply;
}

HttpReply notFound(const QByteArray& target, const QString& message)
{
    return errorReply(target, 404, QStringLiteral("NotFound"), message);
}

} // namespace documents
