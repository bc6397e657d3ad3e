#include "nnetwork/RequestRules.h"

#include <algorithm>
#include <cstring>

namespace nnetwork {
namespace {

bool isHeaderName(const QByteArray& name)
{
    constexpr const char* punctuation = "!#$%&'*+-.^_`|~";
    return !name.isEmpty() && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               (c != '\0' && std::strchr(punctuation, c));
    });
}

bool framesTheMessage(const QByteArray& name)
{
    for (const char* field : {"Host", "Connection", "Content-Length", "Transfer-Encoding", "Upgrade"}) {
        if (name.compare(field, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

QByteArray singleLine(QByteArray value)
{
    const auto isBreak = [](char c) { return c == '\r' || c == '\n' || c == '\0'; };
    const auto* end = std::remove_if(value.begin(), value.end(), isBreak);
    value.truncate(static_cast<int>(end - value.begin()));
    return value;
}

/** True when the body came compressed and has been decompressed on the way. */
bool wasDecompressed(const QNetworkReply& reply)
{
    const QByteArray encoding = reply.rawHeader("Content-Encoding").trimmed().toLower();
    return !reply.request().hasRawHeader("Accept-Encoding") && (encoding == "gzip" || encoding == "deflate");
}

} // namespace

int portOf(const QUrl& url)
{
    constexpr int httpPort = 80;
    constexpr int httpsPort = 443;
    return url.port(url.scheme() == QLatin1String("https") ? httpsPort : httpPort);
}

std::optional<QUrl> requestUrl(const QString& text)
{
    const QUrl url(text);
    const bool known = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    if (!url.isValid() || !known || url.host().isEmpty())
        return std::nullopt;
    return url;
}

void applyHeaders(QNetworkRequest& request, const QVariantMap& headers)
{
    for (auto header = headers.begin(); header != headers.end(); ++header) {
        const QByteArray name = header.key().toUtf8();
        const QVariant& value = header.value();
        if (isHeaderName(name) && !framesTheMessage(name))
            request.setRawHeader(name, singleLine(value.userType() == QMetaType::QByteArray
                                                      ? value.toByteArray()
                                                      : value.toString().toUtf8()));
    }
}

QVariantMap headersOf(const QNetworkReply& reply)
{
    QVariantMap headers;
    for (const auto& [name, value] : reply.rawHeaderPairs())
        headers.insert(QString::fromUtf8(name), QString::fromUtf8(value));
    // Who hands the body on with its headers must not say that it is compressed.
    if (wasDecompressed(reply)) {
        const auto encoding = std::find_if(headers.keyBegin(), headers.keyEnd(), [](const QString& name) {
            return name.compare(QLatin1String("Content-Encoding"), Qt::CaseInsensitive) == 0;
        });
        headers.remove(*encoding);
    }
    return headers;
}

Redirect redirectOf(const QUrl& asked, int status, const QByteArray& location)
{
    const bool redirects = status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
    if (!redirects || location.isEmpty())
        return {};
    const QUrl target = asked.resolved(QUrl::fromEncoded(location));
    if (!target.isValid() || target.host().isEmpty())
        return {Redirect::Kind::Broken, {}, false};
    const bool sameOrigin =
        target.scheme() == asked.scheme() && target.host() == asked.host() && portOf(target) == portOf(asked);
    if (!sameOrigin)
        return {Redirect::Kind::Refused, {}, false};
    return {Redirect::Kind::Follow, target, status != 307 && status != 308};
}

bool isCutShort(const QNetworkReply& reply, int status, qint64 receivedBytes)
{
    const bool bodiless = status == 204 || status == 304;
    return !bodiless && !wasDecompressed(reply) &&
           receivedBytes < reply.header(QNetworkRequest::ContentLengthHeader).toLongLong();
}

bool isAnswer(QNetworkReply::NetworkError error, int status)
{
    if (error == QNetworkReply::NoError)
        return true;
    const bool ofContent =
        error > QNetworkReply::UnknownProxyError && error < QNetworkReply::ProtocolUnknownError;
    const bool ofServer = error > QNetworkReply::ProtocolFailure;
    return status >= 400 && (ofContent || ofServer);
}

} // namespace nnetwork
