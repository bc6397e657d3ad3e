#include "service/DocumentsService.h"

#include <utility>

#include "http/Replies.h"
#include "service/SpoiltAnswers.h"
#include "store/OfficeTypes.h"

namespace documents {

DocumentsService::DocumentsService(DocumentStore& store, Drive& drive, const QString& siteDirectory,
                                   const QString& packageDirectory, Clock clock, LinkShaper& shaper,
                                   const RequestLog& log, UserSessions sessions)
    : m_store(store)
    , m_site(siteDirectory)
    , m_versions(siteDirectory, std::move(clock))
    , m_packages(packageDirectory)
    , m_sessions(std::move(sessions))
    , m_api(store, m_versions)
    , m_drive(drive, store)
    , m_control(shaper, m_versions, m_faults, log, drive, m_sessions)
{
}

Reception DocumentsService::receive(const HttpRequest& head)
{
    const auto target = head.reads() ? std::nullopt : parseRequestTarget(head.target);
    const Route route = target ? routeOf(target->segments) : Route();
    if (needsSession(route.kind) && !m_sessions.accepts(head.cookie)) {
        Reception reception;
        reception.refusal = {signInFirst(head)};
        return reception;
    }
    if (route.kind != RouteKind::Drive || head.method != "PUT")
        return {};
    if (!DriveApi::isStreamed(route.filePath))
        return m_drive.receive(route.filePath, *target);
    // The only chance: such a request does not come to `answer`.
    const auto fault = m_faults.take(head.target);
    if (!fault)
        return m_drive.receive(route.filePath, *target);
    if (!preventsEffect(*fault))
        return spoilt(m_drive.receive(route.filePath, *target), *fault);
    Reception reception;
    reception.refusal = preventedAnswer(*fault, head.target);
    return reception;
}

Answer DocumentsService::answer(const HttpRequest& request)
{
    Answer answer;
    const auto fault = m_faults.take(request.target);
    if (fault)
        answer =
            preventsEffect(*fault) ? preventedAnswer(*fault, request.target) : spoilt(reply(request), *fault);
    else
        answer = reply(request);
    answer.shaped = !request.target.startsWith("/_control");
    return answer;
}

Answer DocumentsService::reply(const HttpRequest& request)
{
    const auto target = parseRequestTarget(request.target);
    if (!target)
        return {errorReply(request.target, 400, QStringLiteral("BadRequest"),
                           QStringLiteral("The address is malformed."))};
    const Route route = routeOf(target->segments);
    if (needsSession(route.kind) && !m_sessions.accepts(request.cookie))
        return {signInFirst(request)};
    return route.kind == RouteKind::Drive ? m_drive.answer(route.filePath, *target, request)
                                          : Answer{reply(route, *target, request)};
}

HttpReply DocumentsService::reply(const Route& route, const RequestTarget& target, const HttpRequest& request)
{
    if (route.kind == RouteKind::Unknown)
        return notFound(request.target, QStringLiteral("There is no such resource."));
    if (route.kind == RouteKind::Control)
        return m_control.answer(route.name, request);

    if (route.kind == RouteKind::Files && request.method == "POST")
        return m_api.create(request.body);
    if (route.kind == RouteKind::Preopen && request.method == "POST")
        return m_api.preopen(route.id, route.name, request);
    if (route.kind == RouteKind::PackageInfo && request.method == "POST")
        return m_api.packageInfo(request.body);
    if (route.kind == RouteKind::Content && request.method == "PUT")
        return m_api.save(route.id, request.body);

    const QByteArray allowed = allowedMethods(route.kind);
    return request.reads() && allowed.startsWith("GET") ? read(route, target, request)
                                                        : methodNotAllowed(request.target, allowed);
}

HttpReply DocumentsService::read(const Route& route, const RequestTarget& target, const HttpRequest& request)
{
    switch (route.kind) {
    case RouteKind::Files:
        return m_api.list();
    case RouteKind::OfficeConfig:
        return m_api.officeConfig(
            route.id, target.queryValue(QStringLiteral("part")).split(u',', Qt::SkipEmptyParts), request);
    case RouteKind::VersionCheck:
        return m_api.versionCheck(route.id);
    case RouteKind::Package:
        return package(route.name, request);
    case RouteKind::PackageFile:
        return m_packages.file(route.name, route.id, request);
    case RouteKind::Home:
        if (const auto page = m_site.file({route.name + QStringLiteral(".html")}, request))
            return *page;
        return siteFile({QStringLiteral("home.html")}, request);
    case RouteKind::DocumentPage:
        return documentPage(route.id, target, request);
    case RouteKind::NewPage:
        return officeTypeByCode(route.name)
                   ? page(route.name, request)
                   : notFound(request.target,
                              QStringLiteral("There is no kind of document \"%1\".").arg(route.name));
    default:
        return siteFile(route.filePath, request);
    }
}

HttpReply DocumentsService::package(const QString& plugin, const HttpRequest& request)
{
    const OfficeType* type = officeTypeByPlugin(plugin);
    return type ? m_packages.description(plugin, m_versions.of(type->package).version, request.target)
                : notFound(request.target, QStringLiteral("There is no package \"%1\".").arg(plugin));
}

HttpReply DocumentsService::signInFirst(const HttpRequest& request) const
{
    const QString text = QStringLiteral("Sign in to see this document");
    HttpRequest anew;
    anew.method = request.method;
    auto page =
        isApiTarget(request.target) ? std::nullopt : m_site.file({QStringLiteral("signin.html")}, anew);
    if (!page)
        return errorReply(request.target, 401, QStringLiteral("userNotLogin"), text);
    page->status = 401;
    page->headers = {{QByteArrayLiteral("Cache-Control"), QByteArrayLiteral("no-store")}};
    return *page;
}

HttpReply DocumentsService::documentPage(const QString& id, const RequestTarget& target,
                                         const HttpRequest& request) const
{
    if (!m_store.contains(id))
        return notFound(request.target, QStringLiteral("There is no document \"%1\".").arg(id));
    const QString asked = target.queryValue(QStringLiteral("officeType"));
    if (officeTypeByCode(asked))
        return page(asked, request);
    const auto document = m_store.load(id);
    if (!document)
        return errorReply(request.target, 500, QStringLiteral("DocumentDamaged"), document.error().text);
    return page(document->officeType, request);
}

HttpReply DocumentsService::page(const QString& officeType, const HttpRequest& request) const
{
    return siteFile({QStringLiteral("dist_langs"), QStringLiteral("zh-CN"),
                     QStringLiteral("index-%1.html").arg(officeType)},
                    request);
}

HttpReply DocumentsService::siteFile(const QStringList& path, const HttpRequest& request) const
{
    if (const auto file = m_site.file(path, request))
        return *file;
    return notFound(request.target, QStringLiteral("The site has no file \"%1\".").arg(path.join(u'/')));
}

} // namespace documents
