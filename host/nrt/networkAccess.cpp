#include "nrt/networkAccess.h"

#include "nrt/product.h"

#include <QNetworkProxy>
#include <QNetworkReply>

namespace nrt {
namespace {

constexpr auto requestedUrlProperty = "requestedUrl";

int portOf(const QUrl& url)
{
    constexpr int httpPort = 80;
    constexpr int httpsPort = 443;
    return url.port(url.scheme() == QLatin1String("https") ? httpsPort : httpPort);
}

/** "address:port" for a mapped host, else empty. */
QString mappedAddress(const QUrl& url)
{
    const QString name = QStringLiteral("resolve");
    const QString withPort =
        product::configValue(name, url.host() + QLatin1Char(':') + QString::number(portOf(url)));
    return withPort.isEmpty() ? product::configValue(name, url.host()) : withPort;
}

QByteArray hostHeader(const QUrl& url)
{
    const QByteArray host = url.host(QUrl::FullyEncoded).toUtf8();
    return url.port() < 0 ? host : host + ':' + QByteArray::number(url.port());
}

/** The same request to the mapped address; unchanged when the address is none. */
QNetworkRequest redirected(const QNetworkRequest& request, const QString& address)
{
    const QUrl parsed(QStringLiteral("//") + address);
    if (!parsed.isValid() || parsed.host().isEmpty())
        return request;
    const QUrl named = request.url();
    QUrl url = named;
    url.setHost(parsed.host());
    url.setPort(parsed.port(portOf(named)));
    QNetworkRequest mapped = request;
    mapped.setUrl(url);
    mapped.setPeerVerifyName(named.host());
    mapped.setRawHeader("Host", hostHeader(named));
    return mapped;
}

} // namespace

NNetworkAccessManager::NNetworkAccessManager(QObject* parent)
    : QNetworkAccessManager(parent)
{
    setProxy(QNetworkProxy::NoProxy);
}

QNetworkReply* NNetworkAccessManager::createRequest(Operation operation, const QNetworkRequest& request,
                                                    QIODevice* outgoingData)
{
    const QString address = mappedAddress(request.url());
    QNetworkRequest sent = address.isEmpty() ? request : redirected(request, address);
    sent.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    sent.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    QNetworkReply* reply = QNetworkAccessManager::createRequest(operation, sent, outgoingData);
    reply->setProperty(requestedUrlProperty, request.url());
    if (!address.isEmpty())
        reply->ignoreSslErrors();
    return reply;
}

QUrl requestedUrl(const QNetworkReply& reply)
{
    const QUrl asked = reply.property(requestedUrlProperty).toUrl();
    return asked.isEmpty() ? reply.url() : asked;
}

} // namespace nrt
