#include "service/Routes.h"

namespace documents {
namespace {

bool startsWith(const QStringList& segments, std::initializer_list<const char*> prefix)
{
    if (segments.size() < static_cast<int>(prefix.size()))
        return false;
    int at = 0;
    for (const char* text : prefix) {
        if (segments.at(at++) != QLatin1String(text))
            return false;
    }
    return true;
}

Route officeApiRoute(const QStringList& rest)
{
    if (rest.size() == 1 && startsWith(rest, {"files"}))
        return {RouteKind::Files, {}, {}, {}};
    if (rest.size() == 4 && startsWith(rest, {"file"}) && rest.at(2) == QLatin1String("preopen"))
        return {RouteKind::Preopen, rest.at(1), rest.at(3), {}};
    if (rest.size() == 3 && startsWith(rest, {"file"}) && rest.at(2) == QLatin1String("content"))
        return {RouteKind::Content, rest.at(1), {}, {}};
    if (rest.size() == 3 && startsWith(rest, {"prefetch", "vcs"}))
        return {RouteKind::VersionCheck, rest.at(2), {}, {}};
    if (rest.size() == 2 && startsWith(rest, {"package"}))
        return {RouteKind::Package, {}, rest.at(1), {}};
    const QLatin1String zip(".zip");
    if (rest.size() == 3 && startsWith(rest, {"package"}) && rest.at(2).endsWith(zip))
        return {RouteKind::PackageFile, rest.at(2).chopped(zip.size()), rest.at(1), {}};
    return {};
}

Route apiRoute(const QStringList& segments)
{
    if (startsWith(segments, {"api", "v3", "office"}))
        return officeApiRoute(segments.mid(3));
    if (startsWith(segments, {"api", "v1", "drive"}))
        return {RouteKind::Drive, {}, {}, segments.mid(3)};
    if (segments.size() == 5 && startsWith(segments, {"api", "quill", "office", "prefetch", "config"}))
        return {RouteKind::PackageInfo, {}, {}, {}};
    if (segments.size() == 2 && startsWith(segments, {"office-config"}))
        return {RouteKind::OfficeConfig, segments.at(1), {}, {}};
    if (segments.size() == 2 && startsWith(segments, {"_control"}))
        return {RouteKind::Control, {}, segments.at(1), {}};
    return {};
}

} // namespace

Route routeOf(const QStringList& segments)
{
    if (startsWith(segments, {"api"}) || startsWith(segments, {"office-config"}) ||
        startsWith(segments, {"_control"}))
        return apiRoute(segments);
    if (segments.isEmpty() || (segments.size() == 1 && !segments.first().contains(u'.')))
        return {RouteKind::Home, {}, segments.value(0), {}};
    if (segments.size() == 2 && (startsWith(segments, {"p"}) || startsWith(segments, {"l"})))
        return {RouteKind::DocumentPage, segments.at(1), {}, {}};
    if (segments.size() == 3 && startsWith(segments, {"office", "new"}))
        return {RouteKind::NewPage, {}, segments.at(2), {}};
    // Scripts have an address of their own, so that a local package can answer for exactly these.
    if (startsWith(segments, {"hybrid", "weboffice-static", "js"}))
        return {RouteKind::SiteFile, {}, {}, segments.mid(1)};
    return {RouteKind::SiteFile, {}, {}, segments};
}

bool needsSession(RouteKind kind)
{
    switch (kind) {
    case RouteKind::DocumentPage:
    case RouteKind::NewPage:
    case RouteKind::Files:
    case RouteKind::Preopen:
    case RouteKind::Content:
    case RouteKind::OfficeConfig:
    case RouteKind::Drive:
        return true;
    default:
        return false;
    }
}

QByteArray allowedMethods(RouteKind kind)
{
    switch (kind) {
    case RouteKind::Files:
        return QByteArrayLiteral("GET, HEAD, POST");
    case RouteKind::Preopen:
    case RouteKind::PackageInfo:
        return QByteArrayLiteral("POST");
    case RouteKind::Content:
        return QByteArrayLiteral("PUT");
    default:
        return QByteArrayLiteral("GET, HEAD");
    }
}

} // namespace documents
