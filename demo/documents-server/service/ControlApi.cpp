#include "service/ControlApi.h"

#include <QJsonDocument>
#include <QJsonObject>

#include "http/Replies.h"
#include "http/RequestTarget.h"
#include "service/DocumentsApi.h"

namespace documents {
namespace {

const QLatin1String shapingResource("shaping");
const QLatin1String versionsResource("versions");
const QLatin1String faultResource("fault");
const QLatin1String logResource("log");
const QLatin1String driveResource("drive");
const QLatin1String sessionsResource("sessions");

} // namespace

Result<LinkSettings> parseLinkSettings(const LinkSettings& base, const QJsonObject& object)
{
    LinkSettings settings = base;
    for (auto member = object.begin(); member != object.end(); ++member) {
        const bool isRtt = member.key() == QLatin1String("rttMs");
        const auto number = wholeNumber(member.value());
        const int largest = isRtt ? LinkSettings::maxRttMs : LinkSettings::maxKbps;
        if (!isRtt && member.key() != QLatin1String("kbps"))
            return Error{ErrorCode::Invalid, QStringLiteral("\"%1\" is not known.").arg(member.key())};
        if (!number || *number < 0 || *number > largest)
            return Error{ErrorCode::Invalid, QStringLiteral("\"%1\" must be a whole number from 0 to %2.")
                                                 .arg(member.key(), QString::number(largest))};
        (isRtt ? settings.rttMs : settings.kbps) = static_cast<int>(*number);
    }
    return settings;
}

ControlApi::ControlApi(LinkShaper& shaper, FrontVersions& versions, FaultRules& faults, const RequestLog& log,
                       Drive& drive, UserSessions& sessions)
    : m_shaper(shaper)
    , m_versions(versions)
    , m_faults(faults)
    , m_log(log)
    , m_drive(drive)
    , m_sessions(sessions)
{
}

HttpReply ControlApi::answer(const QString& resource, const HttpRequest& request)
{
    const QJsonObject done{{QStringLiteral("result"), QStringLiteral("ok")}};
    if (resource == logResource || resource == driveResource) {
        if (!request.reads())
            return methodNotAllowed(request.target, QByteArrayLiteral("GET, HEAD"));
        return resource == logResource ? log(request.target) : driveTotals();
    }
    if (resource != shapingResource && resource != versionsResource && resource != faultResource &&
        resource != sessionsResource)
        return notFound(request.target, QStringLiteral("There is no control resource \"%1\".").arg(resource));
    if (request.method != "PUT")
        return methodNotAllowed(request.target, QByteArrayLiteral("PUT"));
    if (Failure failure = put(resource, request.body))
        return failureReply(*failure);
    return jsonReply(200, done);
}

HttpReply ControlApi::log(const QByteArray& target) const
{
    const auto parsed = parseRequestTarget(target);
    const QString text = parsed ? parsed->queryValue(QStringLiteral("since")) : QString();
    bool isNumber = false;
    const qint64 since = text.toLongLong(&isNumber);
    if (!text.isEmpty() && (!isNumber || since < 0))
        return failureReply({ErrorCode::Invalid, QStringLiteral("\"since\" must be a whole number.")});
    return jsonReply(200, {{QStringLiteral("result"), QStringLiteral("ok")},
                           {QStringLiteral("last"), m_log.lastNumber()},
                           {QStringLiteral("requests"), m_log.recent(since)}});
}

HttpReply ControlApi::driveTotals() const
{
    const auto totals = m_drive.totals();
    if (!totals)
        return failureReply(totals.error());
    return jsonReply(200, {{QStringLiteral("folders"), totals->folders},
                           {QStringLiteral("files"), totals->files},
                           {QStringLiteral("uploads"), totals->uploads},
                           {QStringLiteral("bytes"), totals->bytes}});
}

Failure ControlApi::put(const QString& resource, const QByteArray& body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (!document.isObject())
        return Error{ErrorCode::Invalid, QStringLiteral("The body is not a JSON object.")};
    if (resource == versionsResource)
        return m_versions.setOverrides(document.object());
    if (resource == faultResource)
        return m_faults.setRules(document.object());
    if (resource == sessionsResource)
        return m_sessions.change(document.object());
    const auto settings = parseLinkSettings(m_shaper.settings(), document.object());
    if (!settings)
        return settings.error();
    m_shaper.setSettings(*settings);
    return std::nullopt;
}

} // namespace documents
