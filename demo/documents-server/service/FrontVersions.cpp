#include "service/FrontVersions.h"

#include <QFile>
#include <QJsonValue>

#include "store/OfficeTypes.h"

namespace documents {
namespace {

constexpr qint64 defaultLifetime = 30LL * 24 * 60 * 60;

const QLatin1String versionMember("front_ver");
const QLatin1String expireMember("expire_time");
const QLatin1String upgradeMember("must_upgrade");

Failure checkMember(const QString& package, const QString& member, const QJsonValue& value)
{
    const auto wrong = [&](const char* what) {
        return Error{ErrorCode::Invalid,
                     QStringLiteral("\"%1\": \"%2\" must be %3.").arg(package, member, QLatin1String(what))};
    };
    if (member == versionMember)
        return value.isString() && !value.toString().isEmpty() ? std::nullopt : Failure(wrong("a text"));
    if (member == expireMember)
        return wholeNumber(value) ? std::nullopt : Failure(wrong("a whole number of seconds"));
    if (member == upgradeMember)
        return value.isBool() ? std::nullopt : Failure(wrong("true or false"));
    return Error{ErrorCode::Invalid, QStringLiteral("\"%1\": \"%2\" is not known.").arg(package, member)};
}

Failure checkOverride(const QString& package, const QJsonValue& value)
{
    if (!officeTypeByPackage(package))
        return Error{ErrorCode::Invalid, QStringLiteral("\"%1\" is not a known package.").arg(package)};
    if (!value.isObject())
        return Error{ErrorCode::Invalid, QStringLiteral("\"%1\" must be an object.").arg(package)};
    const QJsonObject members = value.toObject();
    for (auto member = members.begin(); member != members.end(); ++member) {
        if (Failure failure = checkMember(package, member.key(), member.value()))
            return failure;
    }
    return std::nullopt;
}

QString siteVersion(const QString& siteDirectory)
{
    QFile file(siteDirectory + QLatin1String("/version"));
    const QString text =
        file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed() : QString();
    return text.isEmpty() ? QStringLiteral("1.0.0") : text;
}

} // namespace

FrontVersions::FrontVersions(QString siteDirectory, Clock clock)
    : m_siteDirectory(std::move(siteDirectory))
    , m_clock(std::move(clock))
{
}

FrontVersion FrontVersions::of(const QString& package) const
{
    const auto found = m_overrides.find(package);
    const QJsonObject chosen = found == m_overrides.end() ? QJsonObject() : found->second;
    FrontVersion front;
    front.version = chosen.contains(versionMember) ? chosen.value(versionMember).toString()
                                                   : siteVersion(m_siteDirectory);
    front.expireTime = wholeNumber(chosen.value(expireMember)).value_or(m_clock() / 1000 + defaultLifetime);
    front.mustUpgrade = chosen.value(upgradeMember).toBool(false);
    return front;
}

Failure FrontVersions::setOverrides(const QJsonObject& overrides)
{
    std::map<QString, QJsonObject> accepted;
    for (auto entry = overrides.begin(); entry != overrides.end(); ++entry) {
        if (Failure failure = checkOverride(entry.key(), entry.value()))
            return failure;
        accepted[entry.key()] = entry.value().toObject();
    }
    m_overrides = std::move(accepted);
    return std::nullopt;
}

} // namespace documents
