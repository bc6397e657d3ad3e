#pragma once

#include <QString>

#include "http/BodySink.h"
#include "http/HttpMessage.h"
#include "http/LinkShaper.h"
#include "http/RequestLog.h"
#include "http/RequestTarget.h"
#include "service/ControlApi.h"
#include "service/DocumentsApi.h"
#include "service/DriveApi.h"
#include "service/FaultRules.h"
#include "service/FrontVersions.h"
#include "service/PackageDirectory.h"
#include "service/Routes.h"
#include "service/StaticSite.h"
#include "service/UserSessions.h"
#include "store/DocumentStore.h"

namespace documents {

/** The whole service without its sockets: a request goes in, its answer comes out. For one thread. */
class DocumentsService
{
public:
    /** Store and drive, already open, the shaper and the log are kept by reference and outlive the service.
     */
    DocumentsService(DocumentStore& store, Drive& drive, const QString& siteDirectory,
                     const QString& packageDirectory, Clock clock, LinkShaper& shaper, const RequestLog& log,
                     UserSessions sessions = UserSessions());

    /** How the body that follows the head is to be received. */
    Reception receive(const HttpRequest& head);

    /** To a request that is there whole. */
    Answer answer(const HttpRequest& request);

private:
    Answer reply(const HttpRequest& request);
    HttpReply reply(const Route& route, const RequestTarget& target, const HttpRequest& request);
    HttpReply read(const Route& route, const RequestTarget& target, const HttpRequest& request);
    HttpReply package(const QString& plugin, const HttpRequest& request);
    HttpReply signInFirst(const HttpRequest& request) const;
    HttpReply documentPage(const QString& id, const RequestTarget& target, const HttpRequest& request) const;
    HttpReply page(const QString& officeType, const HttpRequest& request) const;
    HttpReply siteFile(const QStringList& path, const HttpRequest& request) const;

    DocumentStore& m_store;
    StaticSite m_site;
    FrontVersions m_versions;
    PackageDirectory m_packages;
    FaultRules m_faults;
    UserSessions m_sessions;
    DocumentsApi m_api;
    DriveApi m_drive;
    ControlApi m_control;
};

} // namespace documents
