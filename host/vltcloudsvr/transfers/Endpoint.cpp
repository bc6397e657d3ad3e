#include "vltcloudsvr/transfers/Endpoint.h"

#include <QUrl>

#include <algorithm>

namespace vlt::cloudsvr {
namespace {

constexpr int httpPort = 80;
constexpr int httpsPort = 443;

/** A text that ends a header's line would begin another one. */
bool isHeaderValue(const QString& text)
{
    constexpr ushort firstPlain = 0x20;
    constexpr ushort lastPlain = 0x7e;
    return std::all_of(text.begin(), text.end(), [](QChar character) {
        return character.unicode() >= firstPlain && character.unicode() <= lastPlain;
    });
}

} // namespace

Result<Endpoint> endpointOf(const Caller& caller)
{
    const QUrl url(caller.apiUrl, QUrl::StrictMode);
    const bool isTls = url.scheme() == QLatin1String("https");
    if (!url.isValid() || url.host().isEmpty() || (!isTls && url.scheme() != QLatin1String("http")))
        return Error{QStringLiteral("there is no documents service to ask")};
    const int standardPort = isTls ? httpsPort : httpPort;
    const QString host = url.host(QUrl::FullyEncoded);
    const QString port = QString::number(url.port(standardPort));
    const QString withPort = caller.resolve.value(host + u':' + port);
    const QString address = withPort.isEmpty() ? caller.resolve.value(host) : withPort;

    Endpoint endpoint;
    endpoint.isTls = isTls;
    endpoint.host = host.toStdString();
    endpoint.connectHost = host.toStdString();
    endpoint.connectPort = port.toStdString();
    if (!address.isEmpty()) {
        const QUrl mapped(QStringLiteral("//") + address);
        if (!mapped.isValid() || mapped.host().isEmpty())
            return Error{QStringLiteral("%1 is mapped to \"%2\", which is no address").arg(host, address)};
        endpoint.isMapped = true;
        endpoint.connectHost = mapped.host().toStdString();
        endpoint.connectPort = QString::number(mapped.port(url.port(standardPort))).toStdString();
    }
    const QString bracketed = host.contains(u':') ? QString(u'[' + host + u']') : host;
    endpoint.hostHeader = (url.port() < 0 ? bracketed : QString(bracketed + u':' + port)).toStdString();
    QString path = url.path(QUrl::FullyEncoded);
    while (path.endsWith(u'/'))
        path.chop(1);
    endpoint.basePath = path.toStdString();
    if (!caller.cookies.isEmpty() && isHeaderValue(caller.cookies))
        endpoint.cookies = caller.cookies.toStdString();
    return endpoint;
}

} // namespace vlt::cloudsvr
