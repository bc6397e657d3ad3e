#pragma once

#include <QString>

#include "drive/Drive.h"
#include "http/HttpMessage.h"
#include "http/LinkShaper.h"
#include "http/RequestLog.h"
#include "service/FaultRules.h"
#include "service/FrontVersions.h"
#include "service/UserSessions.h"
#include "store/Result.h"

namespace documents {

/** `base` with the members "rttMs" and "kbps" of the object put in; any other member or value is an error. */
Result<LinkSettings> parseLinkSettings(const LinkSettings& base, const QJsonObject& object);

/**
 * What tests and measurements turn while the server runs: PUT "shaping", "versions" and "fault", each
 * replacing the state of its name, PUT "sessions", which adds and removes keys, and GET "log" with {"last":
 * number of the last request, "requests": […]}, all that are kept or, with "?since=N", those numbered above
 * N. GET "drive" tells what all drives hold together:
 * {"folders","files","uploads": unfinished ones,"bytes"}. Bad values give 400 and change nothing. For
 * one thread.
 */
class ControlApi
{
public:
    /** All are kept by reference and outlive the API. */
    ControlApi(LinkShaper& shaper, FrontVersions& versions, FaultRules& faults, const RequestLog& log,
               Drive& drive, UserSessions& sessions);

    HttpReply answer(const QString& resource, const HttpRequest& request);

private:
    HttpReply log(const QByteArray& target) const;
    HttpReply driveTotals() const;
    Failure put(const QString& resource, const QByteArray& body);

    LinkShaper& m_shaper;
    FrontVersions& m_versions;
    FaultRules& m_faults;
    const RequestLog& m_log;
    Drive& m_drive;
    UserSessions& m_sessions;
};

} // namespace documents
