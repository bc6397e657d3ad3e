#include "nheliostat/browser/BrowserOrigin.h"

#include <QHostAddress>
#include <QUrl>

namespace nheliostat::browser {

QString originOf(const QUrl& url)
{
    const QString scheme = url.scheme();
    const bool isHttps = scheme == QLatin1String("https");
    if (url.host().isEmpty() || (!isHttps && scheme != QLatin1String("http")))
        return {};
    QString origin = scheme + QLatin1String("://") + url.host(QUrl::FullyEncoded);
    const int defaultPort = isHttps ? 443 : 80;
    if (url.port(defaultPort) != defaultPort)
        origin += QLatin1Char(':') + QString::number(url.port());
    return origin;
}

SchemeUse schemeUse(const QString& scheme, const QStringList& supported)
{
    static const QStringList shown{QStringLiteral("http"), QStringLiteral("https"),
                                   QStringLiteral("file"), QStringLiteral("about"),
                                   QStringLiteral("data"), QStringLiteral("blob"),
                                   QStringLiteral("qrc"),  QStringLiteral("javascript")};
    if (shown.contains(scheme))
        return SchemeUse::Browser;
    return supported.contains(scheme) ? SchemeUse::HandOver : SchemeUse::Ignore;
}

bool isAnsweredLocally(const QUrl& url, const QStringList& interceptedHosts)
{
    const QString host = url.host();
    const bool isLoopback = host == QLatin1String("localhost") ||
                            host.endsWith(QLatin1String(".localhost")) || QHostAddress(host).isLoopback();
    if (originOf(url).isEmpty() || isLoopback)
        return false;
    return url.scheme() == QLatin1String("http") || interceptedHosts.contains(host, Qt::CaseInsensitive);
}

} // namespace nheliostat::browser
