#include "nheliostat/browser/NetErrors.h"

#include <QCoreApplication>
#include <QHash>

namespace nheliostat::browser {

namespace {

constexpr int failed = -2;

const QHash<QString, int>& codes()
{
    static const QHash<QString, int> table{
        {QStringLiteral("ERR_FAILED"), failed},
        {QStringLiteral("ERR_ABORTED"), -3},
        {QStringLiteral("ERR_FILE_NOT_FOUND"), -6},
        {QStringLiteral("ERR_TIMED_OUT"), -7},
        {QStringLiteral("ERR_ACCESS_DENIED"), -10},
        {QStringLiteral("ERR_BLOCKED_BY_CLIENT"), -20},
        {QStringLiteral("ERR_NETWORK_CHANGED"), -21},
        {QStringLiteral("ERR_BLOCKED_BY_RESPONSE"), -27},
        {QStringLiteral("ERR_CONNECTION_CLOSED"), -100},
        {QStringLiteral("ERR_CONNECTION_RESET"), -101},
        {QStringLiteral("ERR_CONNECTION_REFUSED"), -102},
        {QStringLiteral("ERR_CONNECTION_ABORTED"), -103},
        {QStringLiteral("ERR_CONNECTION_FAILED"), -104},
        {QStringLiteral("ERR_NAME_NOT_RESOLVED"), -105},
        {QStringLiteral("DNS_PROBE_FINISHED_NXDOMAIN"), -105},
        {QStringLiteral("ERR_INTERNET_DISCONNECTED"), -106},
        {QStringLiteral("ERR_SSL_PROTOCOL_ERROR"), -107},
        {QStringLiteral("ERR_ADDRESS_INVALID"), -108},
        {QStringLiteral("ERR_ADDRESS_UNREACHABLE"), -109},
        {QStringLiteral("ERR_TUNNEL_CONNECTION_FAILED"), -111},
        {QStringLiteral("ERR_SSL_VERSION_OR_CIPHER_MISMATCH"), -113},
        {QStringLiteral("ERR_CONNECTION_TIMED_OUT"), -118},
        {QStringLiteral("ERR_PROXY_CONNECTION_FAILED"), -130},
        {QStringLiteral("ERR_CERT_COMMON_NAME_INVALID"), -200},
        {QStringLiteral("ERR_CERT_DATE_INVALID"), -201},
        {QStringLiteral("ERR_CERT_AUTHORITY_INVALID"), -202},
        {QStringLiteral("ERR_CERT_CONTAINS_ERRORS"), -203},
        {QStringLiteral("ERR_CERT_REVOKED"), -206},
        {QStringLiteral("ERR_CERT_INVALID"), -207},
        {QStringLiteral("ERR_CERT_WEAK_SIGNATURE_ALGORITHM"), -208},
        {QStringLiteral("ERR_INVALID_URL"), -300},
        {QStringLiteral("ERR_UNKNOWN_URL_SCHEME"), -302},
        {QStringLiteral("ERR_TOO_MANY_REDIRECTS"), -310},
        {QStringLiteral("ERR_UNSAFE_PORT"), -312},
        {QStringLiteral("ERR_INVALID_RESPONSE"), -320},
        {QStringLiteral("ERR_EMPTY_RESPONSE"), -324},
        {QStringLiteral("ERR_CONTENT_DECODING_FAILED"), -330},
        {QStringLiteral("ERR_RESPONSE_HEADERS_TRUNCATED"), -357},
        {QStringLiteral("ERR_CACHE_MISS"), -400},
        {QStringLiteral("ERR_INSECURE_RESPONSE"), -501},
    };
    return table;
}

} // namespace

NetError netErrorFromText(const QString& text)
{
    const QLatin1String http("HTTP ERROR ");
    if (text.startsWith(http))
        return {text.mid(http.size()).toInt(), text};
    const auto found = codes().constFind(text);
    if (found != codes().constEnd())
        return {*found, text};
    return {failed, text.isEmpty() ? QStringLiteral("ERR_FAILED") : text};
}

QString explained(const NetError& error)
{
    const auto text = [](const char* source) {
        return QCoreApplication::translate("nheliostat::browser::NetErrors", source);
    };
    switch (error.code) {
    case -105:
        return text("The address of the server was not found.");
    case -106:
        return text("There is no connection to the network.");
    case -7:
    case -118:
        return text("The server took too long to answer.");
    case -100:
    case -101:
    case -102:
    case -104:
    case -109:
    case -111:
        return text("The server could not be reached.");
    case -324:
        return text("The server sent no answer.");
    default:
        if (error.code <= -200 && error.code > -300)
            return text("The server could not prove its identity.");
        if (error.code > 0)
            return text("The server answered with an error.");
        return text("The page could not be loaded.");
    }
}

} // namespace nheliostat::browser
